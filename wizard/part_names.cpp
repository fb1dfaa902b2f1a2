#include "wizard/part_names.h"

#include <algorithm>
#include <cctype>
#include <initializer_list>

namespace tavrik {
namespace {

char Lower(char c) { return char(std::tolower(static_cast<unsigned char>(c))); }
bool IsUpper(char c) { return std::isupper(static_cast<unsigned char>(c)) != 0; }
bool IsLower(char c) { return std::islower(static_cast<unsigned char>(c)) != 0; }
bool IsDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }

bool IsOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}
bool Contains(std::string_view word, std::initializer_list<std::string_view> pieces) {
    return std::any_of(pieces.begin(), pieces.end(),
                       [&](std::string_view piece) { return word.find(piece) != std::string_view::npos; });
}

/// "wheelfl" is a wheel and "fl", "frontwheel" is "front" and a wheel.
std::string_view WithoutWheel(std::string_view word) {
    for (const std::string_view wheel : {"wheel", "tire", "tyre", "rim", "rad"}) {
        if (word.size() <= wheel.size()) continue;
        if (word.starts_with(wheel)) return word.substr(wheel.size());
        if (word.ends_with(wheel)) return word.substr(0, word.size() - wheel.size());
    }
    return word;
}

bool SaysWheel(std::string_view word) {
    if (IsOneOf(word, {"rim", "rims", "rad", "whl", "felge", "felgen", "raeder", "roue", "roues", "rueda", "ruota", "pneu",
                       "llanta"})) {
        return true;
    }
    if (Contains(word, {"wheel", "tyre", "reifen"})) return true;
    if (word.starts_with("tire") || (word.ends_with("tire") && word != "entire")) return true;
    const std::string_view rest = WithoutWheel(word);
    return rest != word &&
           IsOneOf(rest, {"fl", "fr", "rl", "rr", "bl",    "br",     "front",  "rear",   "back",  "left",  "right",
                          "vl", "vr", "hl", "hr", "vorne", "hinten", "vorder", "hinter", "links", "rechts"});
}

void ReadPlace(std::string_view word, NameHints& hints) {
    struct Place {
        std::string_view word;
        int end, side;
    };
    static constexpr Place kPlaces[] = {
        {"front", 1, 0},      {"fwd", 1, 0},        {"f", 1, 0},          {"fl", 1, -1},        {"fr", 1, 1},
        {"lf", 1, -1},        {"rf", 1, 1},         {"vorne", 1, 0},      {"vorn", 1, 0},       {"vorder", 1, 0},
        {"vl", 1, -1},        {"vr", 1, 1},         {"avant", 1, 0},      {"back", -1, 0},      {"rear", -1, 0},
        {"b", -1, 0},         {"rl", -1, -1},       {"rr", -1, 1},        {"lr", -1, -1},       {"bl", -1, -1},
        {"br", -1, 1},        {"lb", -1, -1},       {"rb", -1, 1},        {"hinten", -1, 0},    {"hinter", -1, 0},
        {"hl", -1, -1},       {"hr", -1, 1},        {"left", 0, -1},      {"l", 0, -1},         {"links", 0, -1},
        {"right", 0, 1},      {"r", 0, 1},          {"rechts", 0, 1},     {"gauche", 0, -1},    {"droite", 0, 1},
        {"arriere", -1, 0},   {"frontleft", 1, -1}, {"frontright", 1, 1}, {"rearleft", -1, -1}, {"rearright", -1, 1},
        {"backleft", -1, -1}, {"backright", -1, 1},
    };
    for (const Place& place : kPlaces) {
        if (word != place.word) continue;
        if (place.end != 0) hints.end = place.end;
        if (place.side != 0) hints.side = place.side;
    }
}

}  // namespace

std::vector<std::string> WordsOf(std::string_view name) {
    std::vector<std::string> words;
    std::string word;
    const auto finish = [&] {
        if (!word.empty()) words.push_back(std::move(word));
        word.clear();
    };
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char c = name[i];
        const bool isLetter = IsUpper(c) || IsLower(c);
        if (!isLetter && !IsDigit(c)) {
            finish();
            continue;
        }
        if (i > 0) {
            const char before = name[i - 1];
            const bool startsWord =
                IsUpper(c) && (IsLower(before) || (IsUpper(before) && i + 1 < name.size() && IsLower(name[i + 1])));
            if (startsWord || IsDigit(c) != IsDigit(before)) finish();
        }
        word += Lower(c);
    }
    finish();
    return words;
}

NameHints HintsOf(std::string_view name) {
    NameHints hints;
    for (const std::string& word : WordsOf(name)) {
        hints.wheel = hints.wheel || SaysWheel(word);
        hints.notAWheel = hints.notAWheel ||
                          Contains(word, {"steer", "lenk", "spare", "ersatz", "arch", "fender", "guard", "liner", "house",
                                          "housing", "cover", "mud", "volant", "wheelbase", "wheelie"}) ||
                          word == "well" || word == "wells" || word == "wheelwell" || word == "bay";
        ReadPlace(word, hints);
        const std::string_view rest = WithoutWheel(word);
        if (rest != word) ReadPlace(rest, hints);
        if (Contains(word, {"bonnet", "hood", "windscreen", "windshield", "headlight", "headlamp", "grille", "radiator",
                            "motorhaube", "steer", "lenkrad", "handlebar", "dashboard"})) {
            hints.bodyEnd = 1;
        } else if (Contains(word, {"taillight", "taillamp", "exhaust", "trunk", "tailgate", "auspuff", "heck", "spoiler",
                                   "towbar"})) {
            hints.bodyEnd = -1;
        }
        hints.bike =
            hints.bike || Contains(word, {"motorcycle", "motorbike", "bike", "bicycle", "motorrad", "scooter", "moped"});
    }
    if (hints.bodyEnd == 0 && !hints.wheel && hints.end != 0) hints.bodyEnd = hints.end;
    return hints;
}

bool MatchesPattern(std::string_view name, std::string_view pattern) {
    // The last star and what it has swallowed so far: on a mismatch it takes one letter more.
    std::size_t n = 0, p = 0, star = std::string_view::npos, resume = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            resume = n;
        } else if (p < pattern.size() && (pattern[p] == '?' || Lower(pattern[p]) == Lower(name[n]))) {
            ++p;
            ++n;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            n = ++resume;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*') ++p;
    return p == pattern.size();
}

}  // namespace tavrik
