// SPDX-License-Identifier: MIT

/** Names of formats: the command-line tool's, or FFmpeg's of the same layout. */
export type Format =
    | "yuv400"
    | "yuv420"
    | "yuv422"
    | "yuv440"
    | "yuv444"
    | "yuv444a8"
    | "nv12"
    | "nv21"
    | "nv16"
    | "yuyv"
    | "uyvy"
    | "p010"
    | "p210"
    | "p410"
    | "p010le"
    | "p210le"
    | "rgb565"
    | "rgb888"
    | "bgr888"
    | "rgba5658"
    | "rgba8888"
    | "bgra8888"
    | "argb8888"
    | "r8g8b8"
    | "r8g8b8a8"
    | "r10g10b10"
    | "rgb565a8"
    | "gray"
    | "yuv420p"
    | "yuv422p"
    | "yuv440p"
    | "yuv444p"
    | "yuva444p"
    | "yuyv422"
    | "uyvy422"
    | "yuv420p10le"
    | "yuv422p10le"
    | "yuv444p10le"
    | "rgb565le"
    | "rgb24"
    | "bgr24"
    | "rgba"
    | "bgra"
    | "argb";

export type Size = readonly [width: number, height: number];
export type Bytes = ArrayBufferView | ArrayBufferLike;

/** Where a plane lies in `data`, in bytes, as VideoFrame.copyTo() of WebCodecs tells it */
export interface PlaneLayout {
    offset: number;
    stride: number;
}

/** A picture. ImageData is one, and so is a Picture. */
export interface Frame {
    /** The samples; those of 16 bits are two bytes, the lower one first. */
    data: Bytes;
    width: number;
    height: number;
    /** "rgba8888" unless it says something else */
    format?: Format;
    /** Of each plane; without it planes lie back to back, without gaps between rows. */
    layout?: readonly PlaneLayout[];
}

/** A frame that a function made, without gaps: `new ImageData(rgba.data, rgba.width)` takes one of rgba8888. */
export interface NewFrame extends Frame {
    data: Uint8Array | Uint8ClampedArray; // clamped if it is rgba8888
    format: Format;
}

export type Matrix = "bt601" | "bt709" | "bt2020";
export type Filter = "bilinear" | "area";
export type Metric = "sad" | "satd" | "ssd";
export type Block = 4 | 8 | 16 | 32 | 64;

export interface ConverterOptions {
    /** Of the result as it is stored, after turning; the source's own if absent */
    size?: Size;
    /** "bt601" if absent */
    matrix?: Matrix;
    /** Of the YUV side; if absent "full" for yuv444, yuv444a8 and p410, "limited" for the others */
    range?: "limited" | "full";
    /** How halved chroma is enlarged; "replicated" if absent */
    chroma?: "replicated" | "smooth";
    /** How a picture gets another size; "bilinear" if absent. "area" takes the mean of all samples a pixel covers. */
    filter?: Filter;
    /** Degrees clockwise */
    turn?: 0 | 90 | 180 | 270;
    /** Left and right are exchanged before turning. */
    mirror?: boolean;
}

export interface ConvertOptions extends ConverterOptions {
    /** Where the result goes; returned then. */
    out?: Frame;
}

export interface ResizeOptions {
    filter?: Filter;
    out?: Frame;
}

export interface MapOptions {
    /** 16 if absent */
    block?: Block;
    /** "sad" if absent */
    metric?: Metric;
}

export interface MotionOptions extends MapOptions {
    /** The longest vector, across and down, in samples, 1 to 1024; 32 if absent */
    reach?: number;
    /** A vector to begin from where it costs less than none, or two numbers for each block: those of the last picture
     *  find faster motion. */
    start?: Size | Int16Array;
}

/** What blocks cost, row by row */
export interface CostMap {
    columns: number;
    rows: number;
    costs: Uint32Array;
}

export interface MotionField extends CostMap {
    /** x and y of each block: the block at (X, Y) is most like the one at (X + x, Y + y) before. */
    vectors: Int16Array;
}

export interface MediaType {
    kind: "video" | "audio" | "subtitle" | "drm" | "unknown";
    /** Such as "h264", "mpeg4", "aac", "unknown" */
    name: string;
    /** ZELT_MT_* of zelt/fcc2mt.h */
    value: number;
}

/** What owns memory of the module gives it back by free(), at the end of a block that declares it by `using`, or, if
 *  nobody did, at some time after nothing refers to it any more. After that it throws. */
interface Owner {
    free(): void;
    [Symbol.dispose](): void;
}

/** A frame in the module's own memory, which conversions read and write in place instead of copying it in or out. */
export interface Picture extends Owner {
    readonly format: Format;
    readonly width: number;
    readonly height: number;
    readonly layout: readonly PlaneLayout[];
    /** A view of the memory, zeros at first. Read it anew after each call of the module: a call that makes the memory
     *  grow detaches all views. */
    readonly data: Uint8Array;
}

/** Converts frames of one format and size to another; made once, called for each frame. */
export interface Converter extends Owner {
    readonly size: Size;
    readonly resultSize: Size;
    /** Returns `out`, or a new frame. */
    convert(frame: Frame): NewFrame;
    convert<T extends Frame>(frame: Frame, out: T): T;
}

/** Reads bits, most significant first. A read that the data is too short for throws a RangeError and leaves the reader
 *  where it was. */
export interface BitReader extends Owner {
    /** Bits read so far */
    readonly position: number;
    readonly bitsLeft: number;
    /** A number of `count` bits, 0 to 32 */
    read(count: number): number;
    /** The same without consuming them */
    peek(count: number): number;
    /** Passes over any number of bits. */
    skip(count: number): void;
    /** Passes over the bits up to the next byte. */
    align(): void;
    /** An unsigned Exp-Golomb code, ue(v) of Rec. ITU-T H.264, up to 65534 */
    readUe(): number;
    /** A signed one, se(v) */
    readSe(): number;
    /** A truncated one, te(v), of an element whose largest value is known */
    readTe(largest: number): number;
}

/** The library in an instance of the module. Errors are TypeErrors and RangeErrors that say what would do. */
export interface Zelt {
    /** Which form of the kernels runs, such as "wasm-simd128" or "scalar" */
    readonly kernels: string;
    /** What the instance has; it grows as it is needed, and is not given back. */
    readonly memory: WebAssembly.Memory;

    /** Names of all formats, each with FFmpeg's name of the same layout or "" */
    formats(): Record<string, string>;
    /** Formats that frames of a format can become */
    conversions(format: Format): Format[];

    convert(frame: Frame, format: Format, options?: ConverterOptions): NewFrame;
    convert<T extends Frame>(frame: Frame, format: Format, options: ConverterOptions & { out: T }): T;
    readonly Converter: new (from: Format, to: Format, size: Size, options?: ConverterOptions) => Converter;
    readonly Picture: new (format: Format, size: Size) => Picture;
    /** Resizes a frame of any format but packed YUV and 10 bits. "area" is for YUV without alpha. */
    resize(frame: Frame, size: Size, options?: { filter?: Filter }): NewFrame;
    resize<T extends Frame>(frame: Frame, size: Size, options: { filter?: Filter; out: T }): T;

    /** What each block of two frames costs. Luma counts, of 8 bits: frames of "yuv400", "yuv420", "nv12"... Where a
     *  frame ends within a block its last row and column are repeated. */
    sadMap(a: Frame, b: Frame, options?: MapOptions): CostMap;
    /** Where the blocks of a frame come from in the one before, and what they cost there: a diamond search, from no
     *  motion or `start` to the cheapest of the eight places of a large diamond, as long as one is cheaper than its
     *  centre, then to the cheapest of the four next to it. It compares a block with 40 places at most. Edges are
     *  repeated where blocks lie over them. */
    motion(before: Frame, now: Frame, options?: MotionOptions): MotionField;

    /** The digest of bytes, or of a frame's samples without gaps between rows, in hexadecimal */
    md5(data: Bytes | Frame): string;
    readonly BitReader: new (data: Bytes) => BitReader;
    /** What a container's code stands for: a FourCC of four characters, the number that they are with the first one
     *  lowest, or a WAVE format tag. `kind` looks in that class alone. */
    mediaType(code: string | number, kind?: "video" | "audio" | "subtitle" | "drm"): MediaType;
    /** Whether a compressed frame is intra coded, so that decoding can start there. `codec`: the name or value of a
     *  MediaType of video. `data`: as a container delivers it, H.264 and HEVC with start codes. */
    isKeyFrame(codec: string | number, data: Bytes): boolean;
}

export interface LoadOptions {
    /** Whether to take the module with SIMD; what the engine can do if absent */
    simd?: boolean;
    /** The module itself, or its bytes, where it does not lie beside the script */
    module?: WebAssembly.Module | BufferSource;
}

/** Loads zelt-simd.wasm or zelt.wasm from beside the script: `const { convert, md5 } = await load();`. Every call makes
 *  an instance with memory of its own; in a page use it in a worker, where long work does not stop the page. */
export function load(options?: LoadOptions): Promise<Zelt>;
