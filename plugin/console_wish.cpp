#include "plugin/console_wish.h"

#include <cstdio>

namespace tavrik_plugin {

bool WantsConsole(const char* variable) {
    if (variable == nullptr) return false;
    int number = 0;
    // NOLINTNEXTLINE(cert-err34-c): one too large for an int still isn't 0
    return std::sscanf(variable, "%i", &number) == 1 && number != 0;
}

}  // namespace tavrik_plugin
