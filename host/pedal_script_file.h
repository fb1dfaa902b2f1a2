#pragma once
/// Pedals of a car that steers itself: which of them are down from which second, or from which metre of its road on.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavrik {

struct HeldPedals {
    bool throttle = false, brake = false, handBrake = false;
    bool operator==(const HeldPedals&) const = default;
};

/// The keys that press them, virtual-key codes.
struct PedalBindings {
    std::int32_t throttle = 0, brake = 0, handBrake = 0;
};

struct PedalRow {
    bool byMetres = false;
    double at = 0.0;  // seconds, or metres along the road, since the start of the drive
    HeldPedals held;  // from then on
};

/// At least one row; seconds ascend from row to row, and so do metres.
struct PedalScript {
    std::vector<PedalRow> rows;
};

/// Reads a script, one row a line: "WHEN, PEDALS". WHEN is seconds ("3" or "3 s") or metres along the road ("250 m"), PEDALS
///
///     throttle    brake    hand-brake    one or several of them: those that are down; the others are let go
///     none                               all are let go
///     key-down NAME    key-up NAME       as in a script of events; the key must be one of the bound ones
///
/// Blank lines and what follows a `#` are passed over.
///
/// @param name     stands for the file in messages
/// @param problem  on false: one sentence with file, line and fault; `script` then stays as it was
bool ReadPedalScriptText(const std::string& name, std::string_view text, const PedalBindings& bindings, PedalScript& script,
                         std::string& problem);

/// Goes through a script row by row: each waits for the one above it, so that seconds and metres can stand in one file.
class PedalPlayer {
 public:
    explicit PedalPlayer(PedalScript script) : script_(std::move(script)) {}

    /// The pedals to hold now. Neither number may get smaller from call to call; a car that rolls back takes no row back.
    HeldPedals HoldAt(double seconds, double metres);
    bool ByMetres() const;
    /// How many rows were not reached.
    std::size_t Left() const { return script_.rows.size() - next_; }

 private:
    PedalScript script_;
    std::size_t next_ = 0;
    HeldPedals held_;
};

}  // namespace tavrik
