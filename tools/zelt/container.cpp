#include "container.h"

#include "pictures/failure.h"

#include <dlfcn.h>

namespace zelt::tool {

std::unique_ptr<container> open_container(const std::string& path) {
    void* module = dlopen("zelt_containers.so", RTLD_NOW);  // along the tool's run path
    void* opener = module ? dlsym(module, "zelt_open_container") : nullptr;
    if (!opener)
        throw failure(
            status::unsupported,
            "reading containers needs libavformat: install libavformat-dev and libavcodec-dev, then configure "
            "and build again");
    return std::unique_ptr<container>(reinterpret_cast<container_opener*>(opener)(path));
}

}  // namespace zelt::tool
