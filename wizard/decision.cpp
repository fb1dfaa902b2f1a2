#include "wizard/decision.h"

#include <cstdio>

namespace tavrik {

std::string NumberText(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.4g", value);
    return text;
}

std::string ListText(const std::vector<std::string>& items) {
    std::string text;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i > 0) text += i + 1 == items.size() ? " and " : ", ";
        text += items[i];
    }
    return text;
}

}  // namespace tavrik
