#include <gtest/gtest.h>

#include "tests/sdk/edited_object.h"

// Every float that goes through the dots of a table is promoted: that is how such calls work.
#pragma GCC diagnostic ignored "-Wdouble-promotion"

namespace {

// Death tests show a table's own slip; everything else reads the table of the edited object.
using edited::Table;

class LonelyClass final : public ClassDesc2 {
 public:
    int IsPublic() override { return 0; }
    void* Create(BOOL) override { return nullptr; }
    const MCHAR* ClassName() override { return L"Lonely"; }
    SClass_ID SuperClassID() override { return HELPER_CLASS_ID; }
    Class_ID ClassID() override { return {1, 2}; }
    const MCHAR* Category() override { return L""; }
};

TEST(ParamBlockDesc, KnowsWhichReferenceItsBlockIs) { EXPECT_EQ(Table().ref_no, 0); }

TEST(ParamBlockDesc, ListsRolloutsInDeclaredOrder) {
    const auto& maps = Table().Maps();
    ASSERT_EQ(maps.size(), 2u);
    EXPECT_EQ(maps[0].map, 0);
    EXPECT_EQ(maps[0].dialog, 130);
    EXPECT_EQ(maps[0].title, 23);
    EXPECT_EQ(maps[1].map, 1);
    EXPECT_EQ(maps[1].dialog, 131);
    EXPECT_EQ(maps[1].title, 4);
}

TEST(ParamBlockDesc, ReadsTheOneRolloutOfABlockWithoutMapNumbers) {
    LonelyClass owner;
    const ParamBlockDesc2 desc(0, L"parameters", 0, &owner, P_AUTO_CONSTRUCT | P_AUTO_UI, 3, 125, 4, 0, 0, nullptr, 7, L"Drive",
                               TYPE_BOOL, 0, 0, p_default, 0, p_ui, TYPE_SINGLECHEKBOX, 1100, p_end, p_end);
    EXPECT_EQ(desc.ref_no, 3);
    ASSERT_EQ(desc.Maps().size(), 1u);
    EXPECT_EQ(desc.Maps()[0].dialog, 125);
    ASSERT_NE(desc.FindParam(7), nullptr);
    EXPECT_EQ(desc.FindParam(7)->ui.map, 0);
    EXPECT_EQ(desc.FindParam(7)->ui.ids, std::vector<int>{1100});
}

TEST(ParamBlockDesc, ListsParametersInDeclaredOrderNotByNumber) {
    LonelyClass owner;
    const ParamBlockDesc2 desc(0, L"parameters", 0, &owner, 0, 5, L"Shift", TYPE_FLOAT, 0, 0, p_end, 3, L"Mass", TYPE_FLOAT, 0,
                               0, p_end, p_end);
    ASSERT_EQ(desc.Count(), 2);
    EXPECT_EQ(desc.ParamAt(0).ID, 5);
    EXPECT_EQ(desc.ParamAt(1).ID, 3);
}

TEST(ParamBlockDesc, ReadsNumbersByTheTypeOfTheParameter) {
    const ParamDef& gravity = *Table().FindParam(edited::kGravity);
    EXPECT_EQ(gravity.def.f, 980.0f);
    EXPECT_EQ(gravity.rangeLow.f, 0.0001f);
    EXPECT_EQ(gravity.rangeHigh.f, 1000000.0f);
    const ParamDef& button = *Table().FindParam(edited::kButton);
    EXPECT_EQ(button.def.i, 32768);
    EXPECT_EQ(button.rangeHigh.i, 255);
}

TEST(ParamBlockDesc, TableTakesOnePairOfControlsForEachEntryAndOneScale) {
    const ParamDef& size = *Table().FindParam(edited::kSize);
    EXPECT_EQ(size.tabSize, 3);
    EXPECT_EQ(size.ui.type, TYPE_SPINNER);
    EXPECT_EQ(size.ui.edit, EDITTYPE_UNIVERSE);
    EXPECT_EQ(size.ui.ids, (std::vector<int>{1096, 1097, 1098, 1099, 1100, 1101}));
    EXPECT_EQ(size.ui.scale, SPIN_AUTOSCALE);
}

TEST(ParamBlockDesc, RadioTakesAsManyButtonsAsItSays) {
    const ParamDef& kind = *Table().FindParam(edited::kKind);
    EXPECT_EQ(kind.ui.type, TYPE_RADIO);
    EXPECT_EQ(kind.ui.map, 1);
    EXPECT_EQ(kind.ui.ids, (std::vector<int>{1086, 1087, 1090, 1091}));
}

TEST(ParamBlockDesc, ReadsOnAfterAValidator) {
    const ParamDef& guest = *Table().FindParam(edited::kGuest);
    EXPECT_EQ(guest.validator, &edited::GuestValidator());
    EXPECT_EQ(guest.ui.ids, std::vector<int>{1121});
}

TEST(ParamBlockDesc, ParameterWithoutControlHasNone) { EXPECT_EQ(Table().FindParam(edited::kSlot)->ui.type, 0); }

TEST(ParamBlockDesc, UnknownNumberIsNotFound) { EXPECT_EQ(Table().FindParam(edited::kUnknown), nullptr); }

TEST(ParamBlockDesc, OptionAddsAControlLater) {
    LonelyClass owner;
    ParamBlockDesc2 desc(0, L"parameters", 0, &owner, P_AUTO_UI | P_MULTIMAP, 1, 2, 130, 23, 0, 0, nullptr, 13,
                         L"Driving_Forecast", TYPE_INT, 0, 0, p_default, 4800, p_end, p_end);
    desc.ParamOption(13, p_ui, 2, TYPE_SPINNER, EDITTYPE_TIME, 1088, 1089, 20.0f, p_end);
    EXPECT_EQ(desc.FindParam(13)->ui.map, 2);
    EXPECT_EQ(desc.FindParam(13)->ui.ids, (std::vector<int>{1088, 1089}));
    EXPECT_EQ(desc.FindParam(13)->ui.scale, 20.0f);
    EXPECT_EQ(desc.FindParam(13)->def.i, 4800);
}

TEST(ParamBlockDesc, OptionGivenTwiceIsAsGivenOnce) {
    LonelyClass owner;
    ParamBlockDesc2 desc(0, L"parameters", 0, &owner, P_AUTO_UI, 125, 4, 0, 0, nullptr, 0, L"Radius", TYPE_WORLD, 0, 0, p_end,
                         p_end);
    for (int i = 0; i < 2; ++i) {
        desc.ParamOption(0, p_ui, TYPE_SPINNER, EDITTYPE_UNIVERSE, 1022, 1023, SPIN_AUTOSCALE, p_end);
        EXPECT_EQ(desc.FindParam(0)->ui.ids, (std::vector<int>{1022, 1023}));
        EXPECT_EQ(desc.Count(), 1);
    }
}

TEST(ParamBlockDesc, ParametersCanBeAddedOneByOne) {
    LonelyClass owner;
    ParamBlockDesc2 desc(0, L"parameters", 0, &owner, 0, p_end);
    desc.AddParam(0, L"Size", TYPE_WORLD_TAB, 3, 0, 0, p_default, 20.0f, p_end);
    desc.AddParam(1, L"Tavrik_Node", TYPE_INODE, P_NO_REF, 0, p_end);
    ASSERT_EQ(desc.Count(), 2);
    EXPECT_EQ(desc.ParamAt(0).def.f, 20.0f);
    EXPECT_EQ(desc.ParamAt(1).flags, P_NO_REF);
}

TEST(ParamBlockDesc, StandsInItsClassForAsLongAsItLives) {
    LonelyClass owner;
    {
        const ParamBlockDesc2 desc(0, L"parameters", 0, &owner, 0, p_end);
        EXPECT_EQ(owner.Blocks(), std::vector<ParamBlockDesc2*>{const_cast<ParamBlockDesc2*>(&desc)});
    }
    EXPECT_TRUE(owner.Blocks().empty());
}

// Each table below has one slip. What it prints names the block, the parameter and the fault.

TEST(ParamBlockDescDeath, UnknownTagEndsTheProgram) {
    LonelyClass owner;
    EXPECT_DEATH(ParamBlockDesc2(0, L"parameters", 0, &owner, 0, 1, L"Gravity", TYPE_WORLD, 0, 0, 0x2fff, 1.0f, p_end, p_end),
                 "^parameter block \"parameters\" of Lonely, parameter 1 \"Gravity\": unknown tag 12287\n$");
}

TEST(ParamBlockDescDeath, UnknownTypeEndsTheProgram) {
    LonelyClass owner;
    EXPECT_DEATH(ParamBlockDesc2(0, L"parameters", 0, &owner, 0, 1, L"Name", 42, 0, 0, p_end, p_end),
                 "\"Name\": unknown type 42");
}

TEST(ParamBlockDescDeath, NumberUsedTwiceEndsTheProgram) {
    LonelyClass owner;
    EXPECT_DEATH(ParamBlockDesc2(0, L"parameters", 0, &owner, 0, 1, L"Mass", TYPE_FLOAT, 0, 0, p_end, 1, L"Grip", TYPE_FLOAT, 0,
                                 0, p_end, p_end),
                 "parameter 1 \"Grip\": the number is taken by \"Mass\"");
}

TEST(ParamBlockDescDeath, NameUsedTwiceEndsTheProgram) {
    LonelyClass owner;
    EXPECT_DEATH(ParamBlockDesc2(0, L"parameters", 0, &owner, 0, 1, L"Mass", TYPE_FLOAT, 0, 0, p_end, 2, L"Mass", TYPE_FLOAT, 0,
                                 0, p_end, p_end),
                 "parameter 2 \"Mass\": the name is taken by 1");
}

TEST(ParamBlockDescDeath, OptionForAnUnknownNumberEndsTheProgram) {
    EXPECT_DEATH(Table().ParamOption(edited::kUnknown, p_ui, 0, TYPE_SINGLECHEKBOX, 1, p_end), "there is no parameter 99");
}

TEST(ParamBlockDescDeath, OptionWithAnUnknownTagEndsTheProgram) {
    EXPECT_DEATH(Table().ParamOption(edited::kFlag, 7, 0, p_end), "\"Bike_Drive\": unknown tag 7");
}

TEST(ParamBlockDescDeath, AskingForAnUnknownParameterEndsTheProgram) {
    EXPECT_DEATH(Table().GetParamDef(edited::kUnknown), "there is no parameter 99");
}

TEST(ParamBlockDescDeath, ControlOnARolloutThatIsNotDeclaredEndsTheProgram) {
    EXPECT_DEATH(Table().ParamOption(edited::kFlag, p_ui, 5, TYPE_SINGLECHEKBOX, 1, p_end), "there is no rollout 5");
}

TEST(ParamBlockDescDeath, UnknownControlEndsTheProgram) {
    EXPECT_DEATH(Table().ParamOption(edited::kFlag, p_ui, 1, 5, 1, p_end), "unknown control type 5");
}

TEST(ParamBlockDescDeath, ControlThatDoesNotFitTheTypeEndsTheProgram) {
    EXPECT_DEATH(Table().ParamOption(edited::kFlag, p_ui, 1, TYPE_PICKNODEBUTTON, 1, p_end), "can't have a control of type");
}

TEST(ParamBlockDescDeath, UnknownEditTypeEndsTheProgram) {
    EXPECT_DEATH(Table().ParamOption(edited::kGravity, p_ui, 1, TYPE_SPINNER, 5, 1, 2, 1.0f, p_end), "unknown edit type 5");
}

TEST(ParamBlockDescDeath, RangeUpsideDownEndsTheProgram) {
    EXPECT_DEATH(Table().ParamOption(edited::kButton, p_range, 5, 4, p_end), "the range ends below its start");
}

TEST(ParamBlockDescDeath, NumberThatIsNotFiniteEndsTheProgram) {
    EXPECT_DEATH(Table().ParamOption(edited::kGravity, p_default, double(NAN), p_end), "a number isn't finite");
}

TEST(ParamBlockDescDeath, DefaultOfAReferenceEndsTheProgram) {
    EXPECT_DEATH(Table().ParamOption(edited::kTarget, p_default, nullptr, p_end), "its type takes no default and no range");
}

TEST(ParamBlockDescDeath, TableWithoutEntriesEndsTheProgram) {
    LonelyClass owner;
    EXPECT_DEATH(ParamBlockDesc2(0, L"parameters", 0, &owner, 0, 1, L"Size", TYPE_WORLD_TAB, 0, 0, 0, p_end, p_end),
                 "\"Size\": can't have 0 entries");
}

TEST(ParamBlockDescDeath, UnknownFlagsEndTheProgram) {
    LonelyClass owner;
    EXPECT_DEATH(ParamBlockDesc2(0, L"parameters", 0, &owner, 0, 1, L"Size", TYPE_WORLD, 0x40, 0, p_end, p_end),
                 "unknown flags 64");
}

TEST(ParamBlockDescDeath, UnknownBlockFlagsEndTheProgram) {
    LonelyClass owner;
    EXPECT_DEATH(ParamBlockDesc2(0, L"parameters", 0, &owner, 1, p_end), "unknown block flags 1");
}

TEST(ParamBlockDescDeath, OnlyNodesGoWithoutAReference) {
    LonelyClass owner;
    EXPECT_DEATH(ParamBlockDesc2(0, L"parameters", 0, &owner, 0, 1, L"Size", TYPE_WORLD, P_NO_REF, 0, p_end, p_end),
                 "for nodes");
}

TEST(ParamBlockDescDeath, BlockNumberUsedTwiceEndsTheProgram) {
    ASSERT_EQ(Table().ID, 0);
    EXPECT_DEATH(ParamBlockDesc2(0, L"more", 0, &edited::Class(), 0, p_end), "\"more\" of Edited: block number 0 is taken");
}

TEST(ParamBlockDescDeath, RolloutNumberUsedTwiceEndsTheProgram) {
    LonelyClass owner;
    EXPECT_DEATH(ParamBlockDesc2(0, L"parameters", 0, &owner, P_AUTO_UI | P_MULTIMAP, 2, 1, 130, 0, 0, 0, nullptr, 1, 131, 0, 0,
                                 0, nullptr, p_end),
                 "rollout 1 is declared twice");
}

}  // namespace
