#include "rig/parameter_tables.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace tavrik {
namespace {

const ParamTable& Table(std::string_view className) {
    const ParamTable* const table = FindParamTable(className);
    if (table == nullptr) throw std::runtime_error("no table " + std::string(className));
    return *table;
}

const ParamRow& Param(std::string_view className, std::int32_t id) {
    const ParamRow* const row = FindParam(Table(className), id);
    if (row == nullptr) throw std::runtime_error("no parameter " + std::to_string(id) + " in " + std::string(className));
    return *row;
}

using Rollouts = std::vector<std::pair<std::int32_t, std::int32_t>>;

Rollouts RolloutsOf(std::string_view className) {
    Rollouts result;
    for (const ParamRollout& rollout : Table(className).rollouts) result.emplace_back(rollout.dialog, rollout.title);
    return result;
}

std::vector<std::int32_t> AttachOrder(std::string_view className) {
    const auto order = Table(className).attachOrder;
    return {order.begin(), order.end()};
}

TEST(ParameterTables, StandInTheOrderOfTheClasses) {
    std::vector<std::string_view> names;
    for (const ParamTable& table : ParamTables()) names.push_back(table.className);
    EXPECT_EQ(names, (std::vector<std::string_view>{"Tavrik", "ChassisObject", "SuspensionObject", "WheelObject",
                                                    "CSphereObject", "HitchObject", "TongueObject", "PushObject", "StartObject",
                                                    "TavrikControl", "TavrikTrackTex"}));
}

TEST(ParameterTables, UnknownClassIsNotFound) { EXPECT_EQ(FindParamTable("Trailer"), nullptr); }

TEST(ParameterTables, UnknownNumberIsNotFound) {
    EXPECT_EQ(FindParam(Table("TongueObject"), 1), nullptr);
    EXPECT_EQ(FindParam(Table("TongueObject"), -1), nullptr);
}

TEST(ParameterTables, NumbersAndNamesAreUniqueInEachTable) {
    for (const ParamTable& table : ParamTables()) {
        std::set<std::int32_t> ids;
        std::set<std::string_view> names;
        for (const ParamRow& row : table.rows) {
            EXPECT_TRUE(ids.insert(row.id).second) << table.className << " has two parameters " << row.id;
            EXPECT_TRUE(names.insert(row.name).second) << table.className << " has two parameters " << row.name;
        }
        EXPECT_FALSE(table.rows.empty()) << table.className;
    }
}

TEST(ParameterTables, EachControlNumberServesOnlyOneParameterOfARollout) {
    for (const ParamTable& table : ParamTables()) {
        std::set<std::pair<std::int32_t, std::int32_t>> seen;
        for (const ParamRow& row : table.rows) {
            for (std::int32_t i = 0; i < row.control.idCount; ++i) {
                EXPECT_TRUE(seen.emplace(row.rollout, row.control.ids[i]).second) << table.className << " " << row.name;
            }
        }
    }
}

TEST(ParameterTables, EachControlStandsInARolloutOfItsTable) {
    for (const ParamTable& table : ParamTables()) {
        for (const ParamRow& row : table.rows) {
            if (row.control.kind == ControlKind::None) {
                EXPECT_EQ(row.rollout, kNoRollout) << table.className << " " << row.name;
            } else {
                EXPECT_GE(row.rollout, 0) << table.className << " " << row.name;
                EXPECT_LT(row.rollout, std::int32_t(table.rollouts.size())) << table.className << " " << row.name;
            }
        }
    }
}

TEST(ParameterTables, TypesCarryTheHostsCodes) {
    EXPECT_EQ(int(ParamType::Float), 0);
    EXPECT_EQ(int(ParamType::Int), 1);
    EXPECT_EQ(int(ParamType::Bool), 4);
    EXPECT_EQ(int(ParamType::World), 7);
    EXPECT_EQ(int(ParamType::Texmap), 15);
    EXPECT_EQ(int(ParamType::Node), 17);
    EXPECT_EQ(int(ParamType::Matrix), 20);
    EXPECT_EQ(int(ParamType::WorldTable), 0x807);
    EXPECT_EQ(int(kParamAnimatable), 1);
    EXPECT_EQ(int(kParamNoReference), 0x100);
    EXPECT_EQ(int(EditType::Int), 0);
    EXPECT_EQ(int(EditType::Float), 1);
    EXPECT_EQ(int(EditType::Universe), 2);
    EXPECT_EQ(int(EditType::Time), 6);
    EXPECT_EQ(kAutoScale, -1.0f);
}

TEST(ParameterTables, EachClassHasOneBlockOfTheSameIdentity) {
    EXPECT_EQ(kBlockId, 0);
    EXPECT_EQ(kBlockReference, 0);
    EXPECT_EQ(kBlockName, "parameters");
}

TEST(ParameterTables, OnlyTheMastersBlockHasSeveralRollouts) {
    for (const ParamTable& table : ParamTables()) {
        const bool master = table.className == "Tavrik";
        EXPECT_EQ(table.flags, master ? 38u : 6u) << table.className;
        EXPECT_EQ(table.rollouts.size(), master ? 5u : 1u) << table.className;
    }
}

TEST(ParameterTables, RolloutsNameDialogAndTitle) {
    EXPECT_EQ(RolloutsOf("Tavrik"), (Rollouts{{130, 23}, {131, 4}, {132, 31}, {124, 32}, {142, 11}}));
    EXPECT_EQ(RolloutsOf("ChassisObject"), (Rollouts{{129, 4}}));
    EXPECT_EQ(RolloutsOf("SuspensionObject"), (Rollouts{{126, 4}}));
    EXPECT_EQ(RolloutsOf("WheelObject"), (Rollouts{{125, 4}}));
    EXPECT_EQ(RolloutsOf("CSphereObject"), (Rollouts{{139, 4}}));
    EXPECT_EQ(RolloutsOf("HitchObject"), (Rollouts{{136, 4}}));
    EXPECT_EQ(RolloutsOf("TongueObject"), (Rollouts{{137, 4}}));
    EXPECT_EQ(RolloutsOf("PushObject"), (Rollouts{{138, 4}}));
    EXPECT_EQ(RolloutsOf("StartObject"), (Rollouts{{133, 4}}));
    EXPECT_EQ(RolloutsOf("TavrikControl"), (Rollouts{{116, 0}}));
    EXPECT_EQ(RolloutsOf("TavrikTrackTex"), (Rollouts{{134, 4}}));
}

TEST(ParameterTables, FourClassesAttachTheirControlsInAnOrderOfTheirOwn) {
    EXPECT_EQ(AttachOrder("Tavrik"), (std::vector<std::int32_t>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 15, 17, 14, 16}));
    EXPECT_EQ(AttachOrder("ChassisObject"), (std::vector<std::int32_t>{0, 1, 2, 5, 3, 4}));
    EXPECT_EQ(AttachOrder("SuspensionObject"), (std::vector<std::int32_t>{11, 0, 1, 6, 12, 4, 5, 8, 7, 9}));
    EXPECT_EQ(AttachOrder("WheelObject"), (std::vector<std::int32_t>{0, 1, 2, 3, 4, 5}));
}

TEST(ParameterTables, TheOtherClassesCarryTheirControlsInTheTable) {
    for (const ParamTable& table : ParamTables().subspan(4)) EXPECT_TRUE(table.attachOrder.empty()) << table.className;
}

TEST(ParameterTables, AttachingReachesEachControlledParameterOnce) {
    for (const ParamTable& table : ParamTables().first(4)) {
        std::multiset<std::int32_t> controlled;
        for (const ParamRow& row : table.rows) {
            if (row.control.kind != ControlKind::None) controlled.insert(row.id);
        }
        EXPECT_EQ(std::multiset<std::int32_t>(table.attachOrder.begin(), table.attachOrder.end()), controlled)
            << table.className;
    }
}

TEST(ParameterTables, NamedNumbersFindTheParameterOfThatName) {
    const struct {
        std::string_view className;
        std::int32_t id;
        std::string_view name;
    } kNamed[] = {
#define NAMED(table, params, name) {table, params::name, #name}
        NAMED("Tavrik", MasterParam, Dummy_Size),
        NAMED("Tavrik", MasterParam, Gravity),
        NAMED("Tavrik", MasterParam, Surface_Node),
        NAMED("Tavrik", MasterParam, Start_Node),
        NAMED("Tavrik", MasterParam, Frame_Step),
        NAMED("Tavrik", MasterParam, Sample_Step),
        NAMED("Tavrik", MasterParam, Rudder_Sensitivity),
        NAMED("Tavrik", MasterParam, Rudder_Angle),
        NAMED("Tavrik", MasterParam, Throttle_Sensitivity),
        NAMED("Tavrik", MasterParam, Brake_Sensitivity),
        NAMED("Tavrik", MasterParam, Time_Delay),
        NAMED("Tavrik", MasterParam, Driving_Type),
        NAMED("Tavrik", MasterParam, Driving_Target),
        NAMED("Tavrik", MasterParam, Driving_Forecast),
        NAMED("Tavrik", MasterParam, Max_Drift_Speed),
        NAMED("Tavrik", MasterParam, Differencial_Drive_Sensitivity),
        NAMED("Tavrik", MasterParam, Bike_Drive),
        NAMED("Tavrik", MasterParam, Balance_Force),
        NAMED("Tavrik", MasterParam, CtrlKbdThrottle),
        NAMED("Tavrik", MasterParam, CtrlKbdLeft),
        NAMED("Tavrik", MasterParam, CtrlKbdRight),
        NAMED("Tavrik", MasterParam, CtrlKbdFwdBkwd),
        NAMED("Tavrik", MasterParam, CtrlKbdBreak),
        NAMED("Tavrik", MasterParam, CtrlKbdHandBreak),
        NAMED("Tavrik", MasterParam, CtrlKbdNitro),
        NAMED("Tavrik", MasterParam, CtrlJoyForward),
        NAMED("Tavrik", MasterParam, CtrlJoyBackward),
        NAMED("Tavrik", MasterParam, CtrlJoyBreak),
        NAMED("Tavrik", MasterParam, CtrlJoyHandBreak),
        NAMED("Tavrik", MasterParam, CtrlJoyNitro),
        NAMED("Tavrik", MasterParam, CtrlJoyWheelCtrl),
        NAMED("Tavrik", MasterParam, CtrlJoyThrottleCtrl),
        NAMED("Tavrik", MasterParam, CtrlJoyDriver),
        NAMED("Tavrik", MasterParam, CtrlJoyPort),
        NAMED("ChassisObject", ChassisParam, Width),
        NAMED("ChassisObject", ChassisParam, Length),
        NAMED("ChassisObject", ChassisParam, Height),
        NAMED("ChassisObject", ChassisParam, Mass),
        NAMED("ChassisObject", ChassisParam, Solidity),
        NAMED("ChassisObject", ChassisParam, Rotation_Center_Shift),
        NAMED("SuspensionObject", SuspensionParam, Length),
        NAMED("SuspensionObject", SuspensionParam, Ruggedness_Factor),
        NAMED("SuspensionObject", SuspensionParam, Ruggedness),
        NAMED("SuspensionObject", SuspensionParam, Damping),
        NAMED("SuspensionObject", SuspensionParam, Top_Stop),
        NAMED("SuspensionObject", SuspensionParam, Bottom_Stop),
        NAMED("SuspensionObject", SuspensionParam, Shift),
        NAMED("SuspensionObject", SuspensionParam, Steering),
        NAMED("SuspensionObject", SuspensionParam, Drive),
        NAMED("SuspensionObject", SuspensionParam, Handbrake),
        NAMED("SuspensionObject", SuspensionParam, Buffer_Ruggedness),
        NAMED("SuspensionObject", SuspensionParam, Suspension_Type),
        NAMED("SuspensionObject", SuspensionParam, Wheel_Shift),
        NAMED("WheelObject", WheelParam, Radius),
        NAMED("WheelObject", WheelParam, Width),
        NAMED("WheelObject", WheelParam, Mass),
        NAMED("WheelObject", WheelParam, Ruggedness),
        NAMED("WheelObject", WheelParam, Grip),
        NAMED("WheelObject", WheelParam, Pattern_Map),
        NAMED("CSphereObject", SphereParam, Radius),
        NAMED("CSphereObject", SphereParam, Ruggedness),
        NAMED("CSphereObject", SphereParam, Grip),
        NAMED("HitchObject", HitchParam, Radius),
        NAMED("HitchObject", HitchParam, Ruggedness),
        {"HitchObject", HitchParam::Connection_Node, "Connection Node"},  // the only name with a blank
        NAMED("TongueObject", TongueParam, Radius),
        NAMED("PushObject", PushParam, Dummy_Size),
        NAMED("PushObject", PushParam, Push_Type),
        NAMED("PushObject", PushParam, Push_Force),
        NAMED("PushObject", PushParam, Start_Time),
        NAMED("PushObject", PushParam, Push_Length),
        NAMED("PushObject", PushParam, Push_Anim_Mult),
        NAMED("PushObject", PushParam, Tavrik),
        NAMED("StartObject", StartParam, Size),
        NAMED("TavrikControl", ControlParam, Tavrik_Node),
        NAMED("TavrikControl", ControlParam, Object_Type),
        NAMED("TavrikControl", ControlParam, Axle_Num),
        NAMED("TavrikControl", ControlParam, Slot_Position),
        NAMED("TavrikTrackTex", TrackTexParam, Frame_Step),
        NAMED("TavrikTrackTex", TrackTexParam, General_Intensity),
        NAMED("TavrikTrackTex", TrackTexParam, Brake_Intensity),
        NAMED("TavrikTrackTex", TrackTexParam, Samples),
        NAMED("TavrikTrackTex", TrackTexParam, Base_Bump),
        NAMED("TavrikTrackTex", TrackTexParam, Pattern_Bump),
#undef NAMED
    };
    std::size_t rows = 0;
    for (const ParamTable& table : ParamTables()) rows += table.rows.size();
    EXPECT_EQ(std::size(kNamed), rows);
    for (const auto& named : kNamed) EXPECT_EQ(Param(named.className, named.id).name, named.name) << named.className;
}

TEST(ParameterDefaults, NewMasterHasThreeDummySizesOfTwenty) {
    const ParamRow& row = Param("Tavrik", MasterParam::Dummy_Size);
    EXPECT_EQ(row.type, ParamType::WorldTable);
    EXPECT_EQ(row.entries, 3);
    EXPECT_EQ(DefaultFloat(Table("Tavrik"), MasterParam::Dummy_Size), 20.0f);
}

TEST(ParameterDefaults, GamepadButtonBitsStandAsTheyAreAboveTheirRange) {
    const struct {
        std::int32_t id, bit;
    } kButtons[] = {{MasterParam::CtrlJoyForward, 32768},
                    {MasterParam::CtrlJoyBackward, 8192},
                    {MasterParam::CtrlJoyBreak, 16384},
                    {MasterParam::CtrlJoyHandBreak, 4096},
                    {MasterParam::CtrlJoyNitro, 512}};
    for (const auto& button : kButtons) {
        EXPECT_EQ(DefaultInt(Table("Tavrik"), button.id), button.bit);
        EXPECT_EQ(Param("Tavrik", button.id).high, 255.0);
    }
}

TEST(ParameterDefaults, PushAndStartPositionHaveNoSizeUntilTheyAreDragged) {
    EXPECT_EQ(DefaultFloat(Table("PushObject"), PushParam::Dummy_Size), 0.0f);
    EXPECT_EQ(DefaultFloat(Table("StartObject"), StartParam::Size), 0.0f);
}

TEST(ParameterDefaults, OnlyTheseDefaultsLieOutsideTheirRange) {
    std::set<std::string> outside;
    for (const ParamTable& table : ParamTables()) {
        for (const ParamRow& row : table.rows) {
            if (row.hasDefault && ClampToRange(row, row.defaultValue) != row.defaultValue) {
                outside.insert(std::string(table.className) + "." + std::string(row.name));
            }
        }
    }
    EXPECT_EQ(outside, (std::set<std::string>{"PushObject.Dummy_Size", "StartObject.Size", "Tavrik.CtrlJoyBackward",
                                              "Tavrik.CtrlJoyBreak", "Tavrik.CtrlJoyForward", "Tavrik.CtrlJoyHandBreak",
                                              "Tavrik.CtrlJoyNitro"}));
}

TEST(ParameterDefaults, NoneDeclaredIsNotZero) {
    const ParamRow& undeclared = Param("TavrikTrackTex", TrackTexParam::Frame_Step);
    EXPECT_FALSE(undeclared.hasDefault);
    EXPECT_FALSE(undeclared.hasRange);
    const ParamRow& zero = Param("TavrikTrackTex", TrackTexParam::General_Intensity);
    EXPECT_TRUE(zero.hasDefault);
    EXPECT_EQ(zero.defaultValue, 0.0);
}

TEST(ParameterDefaults, FlagsStartOff) {
    EXPECT_EQ(DefaultInt(Table("Tavrik"), MasterParam::Bike_Drive), 0);
    EXPECT_EQ(DefaultInt(Table("SuspensionObject"), SuspensionParam::Handbrake), 0);
}

TEST(ParameterRanges, LimitsHaveThePrecisionOfTheirParameter) {
    EXPECT_EQ(Param("Tavrik", MasterParam::Gravity).low, double(0.0001f));
    EXPECT_EQ(Param("PushObject", PushParam::Push_Length).low, double(0.001f));
    EXPECT_EQ(Param("CSphereObject", SphereParam::Grip).defaultValue, double(0.3f));
}

TEST(ParameterRanges, WholeNumbersKeepAllTheirDigits) {
    // Single precision would make 100000000 of it.
    EXPECT_EQ(Param("PushObject", PushParam::Start_Time).high, 99999999.0);
    EXPECT_EQ(Param("PushObject", PushParam::Start_Time).low, -99999999.0);
}

TEST(ParameterRanges, SurfaceAndStartNodeMakeNoDependency) {
    EXPECT_EQ(Param("Tavrik", MasterParam::Surface_Node).flags, std::uint32_t(kParamNoReference));
    EXPECT_EQ(Param("Tavrik", MasterParam::Start_Node).flags, std::uint32_t(kParamNoReference));
    EXPECT_EQ(Param("Tavrik", MasterParam::Driving_Target).flags, std::uint32_t(kParamPlain));
}

TEST(ClampToRange, KeepsWhatLiesWithinBothEndsIncluded) {
    const ParamRow& row = Param("WheelObject", WheelParam::Grip);
    EXPECT_EQ(ClampToRange(row, 0.5), 0.5);
    EXPECT_EQ(ClampToRange(row, row.low), row.low);
    EXPECT_EQ(ClampToRange(row, row.high), row.high);
}

TEST(ClampToRange, BringsWhatLiesOutsideToTheNearerEnd) {
    const ParamRow& row = Param("WheelObject", WheelParam::Grip);
    EXPECT_EQ(ClampToRange(row, 0.0), double(0.0001f));
    EXPECT_EQ(ClampToRange(row, 101.0), 100.0);
    EXPECT_EQ(ClampToRange(row, -std::numeric_limits<double>::infinity()), double(0.0001f));
    EXPECT_EQ(ClampToRange(row, std::numeric_limits<double>::infinity()), 100.0);
}

TEST(ClampToRange, MakesTheLowerEndOfNotANumber) {
    EXPECT_EQ(ClampToRange(Param("Tavrik", MasterParam::Time_Delay), std::numeric_limits<double>::quiet_NaN()), 5.0);
}

TEST(ClampToRange, LeavesAParameterWithoutRangeAlone) {
    EXPECT_EQ(ClampToRange(Param("TavrikTrackTex", TrackTexParam::Frame_Step), -1e9), -1e9);
}

TEST(NodeValidators, HitchTakesATongueOnly) {
    const NodeValidator validator = Param("HitchObject", HitchParam::Connection_Node).control.validator;
    EXPECT_EQ(WantedClass(validator), "TongueObject");
    EXPECT_TRUE(ValidatorAccepts(validator, false, "TongueObject"));
    EXPECT_FALSE(ValidatorAccepts(validator, false, "HitchObject"));
    EXPECT_FALSE(ValidatorAccepts(validator, false, "Tavrik"));
}

TEST(NodeValidators, PushTakesAMasterOnly) {
    const NodeValidator validator = Param("PushObject", PushParam::Tavrik).control.validator;
    EXPECT_EQ(WantedClass(validator), "Tavrik");
    EXPECT_TRUE(ValidatorAccepts(validator, false, "Tavrik"));
    EXPECT_FALSE(ValidatorAccepts(validator, false, "TongueObject"));
}

TEST(NodeValidators, RefuseANodeWithoutObject) {
    EXPECT_FALSE(ValidatorAccepts(NodeValidator::Tongue, false, ""));
    EXPECT_FALSE(ValidatorAccepts(NodeValidator::Master, false, ""));
}

TEST(NodeValidators, AlwaysLetAValueBeCleared) {
    EXPECT_TRUE(ValidatorAccepts(NodeValidator::Tongue, true, ""));
    EXPECT_TRUE(ValidatorAccepts(NodeValidator::Master, true, ""));
}

TEST(NodeValidators, AnyNodeWillDoWhereThereIsNone) {
    for (const std::int32_t id : {MasterParam::Surface_Node, MasterParam::Start_Node, MasterParam::Driving_Target}) {
        const NodeValidator validator = Param("Tavrik", id).control.validator;
        EXPECT_TRUE(ValidatorAccepts(validator, false, "WheelObject"));
        EXPECT_TRUE(ValidatorAccepts(validator, false, ""));
    }
}

TEST(ParameterStrings, TitlesReadAsTheRolloutsShowThem) {
    EXPECT_EQ(ParamString(1), "Tavrik");
    EXPECT_EQ(ParamString(4), "Parameters");
    EXPECT_EQ(ParamString(11), "Controller Setup");
    EXPECT_EQ(ParamString(23), "Car Setup");
    EXPECT_EQ(ParamString(31), "Animation");
    EXPECT_EQ(ParamString(32), "Driving Parameters");
}

TEST(ParameterStrings, EachTitleOfARolloutHasAText) {
    for (const ParamTable& table : ParamTables()) {
        for (const ParamRollout& rollout : table.rollouts) {
            EXPECT_EQ(ParamString(rollout.title).empty(), rollout.title == 0) << table.className;
        }
    }
}

TEST(ParameterStrings, EntriesThatNothingReadsAreEmpty) {
    EXPECT_TRUE(ParamString(0).empty());
    EXPECT_TRUE(ParamString(5).empty());
    EXPECT_TRUE(ParamString(33).empty());
}

}  // namespace
}  // namespace tavrik
