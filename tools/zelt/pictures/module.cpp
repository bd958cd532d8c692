// SPDX-License-Identifier: MIT
#include "pictures/module.h"

#include "pictures/failure.h"

#include <dlfcn.h>
#include <filesystem>

namespace zelt::tool {

void* module_function(const char* module, const char* name, const std::string& missing) {
    // It stands beside the tool where it was built, and in the library folder where it is installed.
    std::error_code unread;
    const auto folder = std::filesystem::read_symlink("/proc/self/exe", unread).parent_path();
    for (const char* place : {"", ZELT_MODULE_FOLDER})
        if (void* found = dlopen((folder / place / (std::string(module) + ".so")).c_str(), RTLD_NOW))
            return dlsym(found, name);
    throw failure(status::unsupported, missing + ", then configure and build again");
}

void* libav_function(const char* name, const std::string& what) {
    return module_function("zelt_containers", name,
                           "reading " + what + " needs libavformat: install libavformat-dev and libavcodec-dev");
}

}  // namespace zelt::tool
