#include "container.h"

#include "pictures/failure.h"

#include <dlfcn.h>
#include <filesystem>

namespace zelt::tool {
namespace {

/// The module stands beside the tool where it was built, and in the library folder where it is installed.
container_opener* find_opener() {
    std::error_code unread;
    const auto folder = std::filesystem::read_symlink("/proc/self/exe", unread).parent_path();
    for (const char* place : {"", ZELT_MODULE_FOLDER})
        if (void* module = dlopen((folder / place / "zelt_containers.so").c_str(), RTLD_NOW))
            return reinterpret_cast<container_opener*>(dlsym(module, "zelt_open_container"));
    return nullptr;
}

}  // namespace

std::unique_ptr<container> open_container(const std::string& path) {
    if (container_opener* open = find_opener()) return std::unique_ptr<container>(open(path));
    throw failure(status::unsupported, "reading containers needs libavformat: install libavformat-dev and "
                                       "libavcodec-dev, then configure and build again");
}

}  // namespace zelt::tool
