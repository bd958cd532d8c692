// SPDX-License-Identifier: MIT
/* A plugin of the QEMU emulator: prints how many instructions the program ran between a system call 9999 and the next,
 * in other functions than the harness's own and in those. Needs the emulator's option -d plugin, or there are
 * no names of functions. With the argument trace=FILE it also writes there what ran of the former: a line
 * "NUMBER TAB INSTRUCTION;INSTRUCTION;..." for every block of code that it meets, a line "NUMBER" each time that it
 * ran, and a line "end" after each count. Debian ships no header for plugins, so the few declarations needed stand here
 * (plugin interface, version 1). */
#include <inttypes.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define EXPORT __attribute__((visibility("default")))

struct qemu_plugin_tb;
struct qemu_plugin_insn;
typedef uint64_t plugin_id;
typedef void translated(plugin_id id, struct qemu_plugin_tb* block);
typedef void executed_block(unsigned cpu, void* data);
typedef void called(plugin_id id, unsigned cpu, int64_t number, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4,
                    uint64_t a5, uint64_t a6, uint64_t a7, uint64_t a8);
enum operation { ADD_U64 };
enum access { NO_REGISTERS };

void qemu_plugin_register_vcpu_tb_trans_cb(plugin_id id, translated* f);
void qemu_plugin_register_vcpu_syscall_cb(plugin_id id, called* f);
void qemu_plugin_register_vcpu_insn_exec_inline(struct qemu_plugin_insn* instruction, enum operation op, void* at,
                                                uint64_t value);
void qemu_plugin_register_vcpu_tb_exec_cb(struct qemu_plugin_tb* block, executed_block* f, enum access a, void* data);
size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb* block);
struct qemu_plugin_insn* qemu_plugin_tb_get_insn(const struct qemu_plugin_tb* block, size_t index);
const char* qemu_plugin_insn_symbol(const struct qemu_plugin_insn* instruction);
char* qemu_plugin_insn_disas(const struct qemu_plugin_insn* instruction);

EXPORT int qemu_plugin_version = 1;
EXPORT int qemu_plugin_install(plugin_id id, const void* info, int argc, char** argv);

enum where { OTHER, HARNESS, PLACES };
static uint64_t executed[PLACES], started[PLACES];
static int counting;
static FILE* trace;

static enum where place_of(const struct qemu_plugin_insn* instruction) {
    static const char* const harness[] = {"zelt5bench", "zelt4test", "_ZNSt", "_ZNKSt"};
    const char* symbol = qemu_plugin_insn_symbol(instruction);
    for (size_t i = 0; symbol && i < sizeof harness / sizeof *harness; ++i)
        if (strstr(symbol, harness[i])) return HARNESS;
    return OTHER;
}

static void on_execution(unsigned cpu, void* number) {
    (void)cpu;
    if (counting) fprintf(trace, "%" PRIuPTR "\n", (uintptr_t)number);
}

static void trace_block(struct qemu_plugin_tb* block) {
    static uintptr_t number;
    fprintf(trace, "%" PRIuPTR "\t", ++number);
    for (size_t i = 0; i < qemu_plugin_tb_n_insns(block); ++i) {
        char* text = qemu_plugin_insn_disas(qemu_plugin_tb_get_insn(block, i));
        fprintf(trace, "%s;", text);
        free(text);
    }
    fputs("\n", trace);
    qemu_plugin_register_vcpu_tb_exec_cb(block, on_execution, NO_REGISTERS, (void*)number);
}

static void on_translation(plugin_id id, struct qemu_plugin_tb* block) {
    (void)id;
    const enum where place = place_of(qemu_plugin_tb_get_insn(block, 0));
    /* One by one: of a block on x86 the last may be left to the next one, if it reaches into another page. */
    for (size_t i = 0; i < qemu_plugin_tb_n_insns(block); ++i)
        qemu_plugin_register_vcpu_insn_exec_inline(qemu_plugin_tb_get_insn(block, i), ADD_U64, &executed[place], 1);
    if (trace && place == OTHER) trace_block(block);
}

static void on_call(plugin_id id, unsigned cpu, int64_t number, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4,
                    uint64_t a5, uint64_t a6, uint64_t a7, uint64_t a8) {
    (void)id, (void)cpu, (void)a1, (void)a2, (void)a3, (void)a4, (void)a5, (void)a6, (void)a7, (void)a8;
    if (number != 9999) return;
    if (counting) {
        for (int i = 0; i < PLACES; ++i) printf("\t%" PRIu64, executed[i] - started[i]);
        fflush(stdout);
        if (trace) fputs("end\n", trace), fflush(trace);
    }
    counting = !counting;
    memcpy(started, executed, sizeof started);
}

int qemu_plugin_install(plugin_id id, const void* info, int argc, char** argv) {
    (void)info;
    for (int i = 0; i < argc; ++i)
        if (!strncmp(argv[i], "trace=", 6)) trace = fopen(argv[i] + 6, "w");
    qemu_plugin_register_vcpu_tb_trans_cb(id, on_translation);
    qemu_plugin_register_vcpu_syscall_cb(id, on_call);
    return 0;
}
