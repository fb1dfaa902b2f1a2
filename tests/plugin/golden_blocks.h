#pragma once
/// Every parameter that scenes and scripts in use rely on, in the order in which it is listed.

#include <optional>
#include <vector>

#include "host/sdk/maxtypes.h"

namespace plugin_test {

// Kinds of control, as these tables write them.
enum class Kind { None, Spinner, Radio, Check, Pick, Map };

struct GoldenControl {
    Kind kind = Kind::None;
    int map = 0;
    int edit = 0;          // of a spinner: 0 int, 1 float, 2 length, 6 time
    std::vector<int> ids;  // edit field and spinner of each entry, or the buttons
    float scale = -1.0f;   // of a spinner
    bool picky = false;    // a pick button that doesn't take every node
};

struct GoldenParam {
    int id;
    const wchar_t* name;
    int type;  // 0 float, 1 int, 4 flag, 7 length, 15 map, 17 node, 20 matrix, 0x807 table of lengths
    int flags = 0;
    std::optional<double> byDefault;
    std::optional<double> low, high;
    GoldenControl control;
    int entries = 1;
};

struct GoldenPage {
    int map, dialog, title;
};

struct GoldenBlock {
    const wchar_t* className;  // in the create panel
    SClass_ID superClass;
    Class_ID id;
    int flags;
    std::vector<GoldenPage> pages;
    std::vector<GoldenParam> params;
};

const std::vector<GoldenBlock>& GoldenBlocks();
/// By the class's name. There must be one.
const GoldenBlock& GoldenBlockOf(const wchar_t* className);

}  // namespace plugin_test
