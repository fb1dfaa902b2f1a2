#include "host/sdk/desktop.h"

namespace tavrik {

Desktop& TheDesktop() {
    static Desktop desktop;
    return desktop;
}

}  // namespace tavrik
