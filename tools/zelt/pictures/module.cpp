// SPDX-License-Identifier: MIT
#include "pictures/module.h"

#include "pictures/failure.h"

#include <dlfcn.h>
#include <filesystem>

namespace zelt::tool {

void* module_function(const char* name, const char* what) {
    // It stands beside the tool where it was built, and in the library folder where it is installed.
    std::error_code unread;
    const auto folder = std::filesystem::read_symlink("/proc/self/exe", unread).parent_path();
    for (const char* place : {"", ZELT_MODULE_FOLDER})
        if (void* module = dlopen((folder / place / "zelt_containers.so").c_str(), RTLD_NOW))
            return dlsym(module, name);
    throw failure(status::unsupported, std::string("reading ") + what +
                                           " needs libavformat: install libavformat-dev and libavcodec-dev, then "
                                           "configure and build again");
}

}  // namespace zelt::tool
