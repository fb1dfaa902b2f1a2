#include "host/event_script_file.h"

#include <gtest/gtest.h>

namespace tavrik {
namespace {

EventScript Read(std::string_view text) {
    EventScript script;
    std::string problem;
    EXPECT_TRUE(ReadEventScriptText("hands.txt", text, script, problem)) << problem;
    return script;
}

DriverEvent ReadOne(std::string_view text) {
    const EventScript script = Read(text);
    EXPECT_EQ(script.events.size(), 1u);
    return script.events.empty() ? DriverEvent{} : script.events.front();
}

void ExpectFault(std::string_view text, std::string_view part) {
    EventScript script;
    script.events.resize(3);
    std::string problem;
    EXPECT_FALSE(ReadEventScriptText("hands.txt", text, script, problem)) << text;
    EXPECT_TRUE(problem.starts_with("hands.txt: ")) << problem;
    EXPECT_NE(problem.find(part), std::string::npos) << problem;
    EXPECT_EQ(script.events.size(), 3u) << "a refused script leaves the old one alone";
}

TEST(EventScriptFile, ReadsAKeyByItsName) {
    const DriverEvent event = ReadOne("0.5, key-down W\n");
    EXPECT_EQ(event.kind, DriverEventKind::KeyDown);
    EXPECT_EQ(event.seconds, 0.5);
    EXPECT_EQ(event.code, 87);
}

TEST(EventScriptFile, ReadsAReleasedKey) {
    const DriverEvent event = ReadOne("1, key-up ENTER");
    EXPECT_EQ(event.kind, DriverEventKind::KeyUp);
    EXPECT_EQ(event.code, 13);
}

TEST(EventScriptFile, ReadsThePointerIncludingPlacesLeftOfTheWindow) {
    const DriverEvent event = ReadOne("1, mouse -20 35");
    EXPECT_EQ(event.kind, DriverEventKind::MouseMove);
    EXPECT_EQ(event.x, -20.0f);
    EXPECT_EQ(event.y, 35.0f);
}

TEST(EventScriptFile, ReadsTheWheel) {
    const DriverEvent event = ReadOne("1, wheel -120");
    EXPECT_EQ(event.kind, DriverEventKind::MouseWheel);
    EXPECT_EQ(event.code, -120);
}

TEST(EventScriptFile, ReadsTheEventsWithoutFurtherWords) {
    const std::pair<const char*, DriverEventKind> rows[] = {{"right-down", DriverEventKind::RightButtonDown},
                                                            {"right-up", DriverEventKind::RightButtonUp},
                                                            {"click", DriverEventKind::Click},
                                                            {"leave", DriverEventKind::LoseFocus},
                                                            {"pad-lost", DriverEventKind::PadLost}};
    for (const auto& [word, kind] : rows) EXPECT_EQ(ReadOne(std::string("2, ") + word).kind, kind) << word;
}

TEST(EventScriptFile, ReadsAScrub) {
    const DriverEvent event = ReadOne("2, scrub 1.25");
    EXPECT_EQ(event.kind, DriverEventKind::Scrub);
    EXPECT_EQ(event.x, 1.25f);
}

TEST(EventScriptFile, ReadsEveryAxisOfAPadAtItsFullReach) {
    const XInputGamepad pad = ReadOne("0, pad LX -1 LY 1 RX 0.5 RY 0 LT 1 RT 0.5").pad;
    EXPECT_EQ(pad.sThumbLX, -32767);
    EXPECT_EQ(pad.sThumbLY, 32767);
    EXPECT_EQ(pad.sThumbRX, 16384);
    EXPECT_EQ(pad.sThumbRY, 0);
    EXPECT_EQ(pad.bLeftTrigger, 255);
    EXPECT_EQ(pad.bRightTrigger, 128);
}

TEST(EventScriptFile, ReadsEveryButtonOfAPad) {
    const std::pair<const char*, int> rows[] = {{"A", 4096}, {"B", 8192}, {"X", 16384}, {"Y", 32768}, {"LB", 256},
                                                {"RB", 512}, {"UP", 1},   {"DOWN", 2},  {"LEFT", 4},  {"RIGHT", 8}};
    for (const auto& [name, bit] : rows) {
        EXPECT_EQ(ReadOne(std::string("0, pad ") + name + " 1").pad.wButtons, bit) << name;
    }
}

TEST(EventScriptFile, APadEventLeavesOtherControlsAsTheyWere) {
    const EventScript script = Read("0, pad LX 1 A 1\n1, pad RT 1\n2, pad A 0\n");
    EXPECT_EQ(script.events[1].pad.sThumbLX, 32767);
    EXPECT_EQ(script.events[1].pad.wButtons, 4096);
    EXPECT_EQ(script.events[2].pad.bRightTrigger, 255);
    EXPECT_EQ(script.events[2].pad.wButtons, 0);
}

TEST(EventScriptFile, PassesOverHeadingsCommentsBlankLinesAndCarriageReturns) {
    const EventScript script = Read("\xEF\xBB\xBFseconds, event\r\n\r\n# hands\r\n0.5, key-down W # pull away\r\n");
    ASSERT_EQ(script.events.size(), 1u);
    EXPECT_EQ(script.events[0].code, 87);
}

TEST(EventScriptFile, EventsMayShareASecond) { EXPECT_EQ(Read("1, key-up W\n1, key-down S\n").events.size(), 2u); }

TEST(EventScriptFile, RefusesAnUnknownKey) { ExpectFault("0, key-down FOO", "line 1: there is no key \"FOO\""); }
TEST(EventScriptFile, RefusesAnUnknownEvent) { ExpectFault("0, honk", "line 1: there is no event \"honk\""); }
TEST(EventScriptFile, RefusesAnEventInThePast) { ExpectFault("2, click\n1, click\n", "line 2: its time, 1 s, lies before"); }
TEST(EventScriptFile, RefusesATimeThatIsNoNumber) { ExpectFault("0, click\nsoon, click", "line 2: its time is \"soon\""); }
TEST(EventScriptFile, RefusesANegativeTime) { ExpectFault("-1, click", "its time is \"-1\""); }
TEST(EventScriptFile, RefusesANaNForATime) { ExpectFault("nan, click", "its time is \"nan\""); }
TEST(EventScriptFile, RefusesATimeWithoutAnEvent) { ExpectFault("1", "names no event"); }
TEST(EventScriptFile, RefusesTooFewWords) { ExpectFault("1, mouse 3", "mouse takes 2 more words, not 1"); }
TEST(EventScriptFile, RefusesTooManyWords) { ExpectFault("1, click 3", "click takes 0 more words, not 1"); }
TEST(EventScriptFile, RefusesAStickBeyondItsReach) { ExpectFault("1, pad LX 1.5", "LX is \"1.5\", but goes from -1 to 1"); }
TEST(EventScriptFile, RefusesATriggerBelowZero) { ExpectFault("1, pad LT -0.1", "LT is \"-0.1\", but goes from 0 to 1"); }
TEST(EventScriptFile, RefusesAButtonHalfPressed) { ExpectFault("1, pad A 0.5", "A is \"0.5\", but goes 0 or 1"); }
TEST(EventScriptFile, RefusesAnUnknownControl) { ExpectFault("1, pad Q 1", "no control \"Q\""); }
TEST(EventScriptFile, RefusesANumberForAButton) { ExpectFault("1, pad 4096 1", "no control \"4096\""); }
TEST(EventScriptFile, RefusesAControlWithoutAValue) { ExpectFault("1, pad LX 1 RX", "pairs of a control and its value"); }
TEST(EventScriptFile, RefusesAWheelThatTurnsByHalves) { ExpectFault("1, wheel 0.5", "the wheel can't turn by \"0.5\""); }
TEST(EventScriptFile, RefusesAPointerOutOfAllReach) { ExpectFault("1, mouse 40000 0", "the mouse can't go to"); }
TEST(EventScriptFile, RefusesAnEmptyFile) { ExpectFault("# nothing\n", "holds no event"); }

TEST(LooksLikeEvents, TellsEventsFromRowsByTheSecondColumn) {
    EXPECT_TRUE(LooksLikeEvents("# hands\nseconds, event\n0.0, key-down W\n"));
    EXPECT_FALSE(LooksLikeEvents("seconds, steering\n0.0, 0.5, 1, 0, 0, 0\n"));
    EXPECT_FALSE(LooksLikeEvents("0.0, nan, 1, 0, 0, 0\n"));
    EXPECT_FALSE(LooksLikeEvents(""));
}

}  // namespace
}  // namespace tavrik
