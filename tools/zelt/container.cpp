// SPDX-License-Identifier: MIT
#include "container.h"

#include "pictures/module.h"

namespace zelt::tool {

std::unique_ptr<container> open_container(const std::string& path) {
    const auto open = reinterpret_cast<container_opener*>(libav_function("zelt_open_container", "containers"));
    return std::unique_ptr<container>(open(path));
}

}  // namespace zelt::tool
