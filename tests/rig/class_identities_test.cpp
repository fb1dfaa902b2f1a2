#include "rig/class_identities.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "rig/parameter_tables.h"

namespace tavrik {
namespace {

std::string Listing() {
    std::ostringstream out;
    for (const ClassIdentity& c : ClassIdentities()) {
        out << c.descriptorClass << '|' << c.objectClass << '|' << std::hex << std::uppercase << c.superClass << '|' << c.id.a
            << '|' << c.id.b << '|' << c.className << '|' << c.category << '|' << c.internalName << '|' << c.getClassName << '|'
            << c.getObjectName << '|' << c.initNodeName << '\n';
    }
    return out.str();
}

TEST(ClassIdentities, AreTheNumbersAndNamesOfAllSavedScenes) {
    EXPECT_EQ(Listing(), R"(TavrikClassDesc|Tavrik|50|727C1135|5E2E3307|Tavrik|Tavrik|Tavrik|Tavrik|Tavrik|Tavrik_
WheelClassDesc|WheelObject|50|795B5018|46716D27|Wheel|Tavrik|Wheel|Wheel|Wheel|Wheel_
SuspensionClassDesc|SuspensionObject|50|3D5B5E1A|47F7793F|Suspension|Tavrik|Suspension|Suspension|Suspension|Suspension_
TavrikControlClassDesc|TavrikControl|9008|4F21D66|68861A61|TavrikControl|Tavrik|FWheel|TavrikControl||
ChassisClassDesc|ChassisObject|50|1DA02DE5|66EB5108|Chassis|Tavrik|Chassis|Chassis|Chassis|Chassis_
StartClassDesc|StartObject|50|473254E9|E1C306B|Start Position|Tavrik|Start|Start|StartPosition|StartPosition_
TavrikTrackTexClassDesc|TavrikTrackTex|C10|162E3EC8|4D88768C|TavrikTrackTexture||TavrikTrackTexture|||
HitchClassDesc|HitchObject|50|5D574EF9|722236A8|Trailer Hitch|Tavrik|Trailer Hitch|Trailer Hitch|Trailer Hitch|Trailer Hitch_
TongueClassDesc|TongueObject|50|547D5C37|78F502AA|Trailer Tongue|Tavrik|Trailer Tongue|Trailer Tongue|Trailer Tongue|Trailer Tongue_
PushClassDesc|PushObject|50|69F24B11|401D0DF1|Push|Tavrik|Push|Push|Push|Push_
CSphereClassDesc|CSphereObject|50|7F092351|2D247095|Col. Sphere|Tavrik|Col. Sphere|Col. Sphere|Col. Sphere|Col. Sphere_
)");
}

TEST(ClassIdentities, ControllersSuperClassIsTheHostsNumberForMatrixControllers) {
    EXPECT_EQ(FindClass("TavrikControl")->superClass, 36872u);
}

TEST(ClassIdentities, EachHasATableOfParametersAndNoTableIsWithoutAClass) {
    EXPECT_EQ(ClassIdentities().size(), ParamTables().size());
    for (const ClassIdentity& identity : ClassIdentities()) {
        EXPECT_NE(FindParamTable(identity.objectClass), nullptr) << identity.objectClass;
    }
}

TEST(ClassIdentities, NoTwoShareAnId) {
    std::set<std::pair<std::uint32_t, std::uint32_t>> ids;
    for (const ClassIdentity& identity : ClassIdentities()) ids.insert({identity.id.a, identity.id.b});
    EXPECT_EQ(ids.size(), 11u);
}

TEST(ClassIdentities, OnlyHelpersNameTheirNodes) {
    for (const ClassIdentity& identity : ClassIdentities()) {
        const bool helper = identity.superClass == kHelperSuperClass;
        EXPECT_EQ(!identity.initNodeName.empty(), helper) << identity.objectClass;
        EXPECT_EQ(!identity.getObjectName.empty(), helper) << identity.objectClass;
        if (helper) {
            EXPECT_EQ(identity.initNodeName, std::string(identity.getObjectName) + "_");
        }
    }
}

TEST(FindClass, FindsEachByItsIdItsKindAndItsName) {
    for (const ClassIdentity& identity : ClassIdentities()) {
        EXPECT_EQ(FindClass(identity.id), &identity);
        EXPECT_EQ(FindClass(identity.objectClass), &identity);
        EXPECT_EQ(ObjectClassOf(identity.id), identity.kind);
        if (identity.kind != ObjectClass::Other) {
            EXPECT_EQ(FindClass(identity.kind), &identity);
        }
    }
}

TEST(FindClass, KnowsNothingOfOthers) {
    EXPECT_EQ(FindClass(ClassId{0x727C1135, 0x5E2E3308}), nullptr);
    EXPECT_EQ(FindClass(ClassId{8197, 0}), nullptr);
    EXPECT_EQ(FindClass(ObjectClass::None), nullptr);
    EXPECT_EQ(FindClass(ObjectClass::Other), nullptr);
    EXPECT_EQ(FindClass("Wheel"), nullptr);
}

TEST(ObjectClassOf, AnythingThatIsNoRigObjectIsOther) {
    EXPECT_EQ(ObjectClassOf({1, 2}), ObjectClass::Other);
    EXPECT_EQ(ObjectClassOf({0x04F21D66, 0x68861A61}), ObjectClass::Other);  // the controller
    EXPECT_EQ(ObjectClassOf({0x162E3EC8, 0x4D88768C}), ObjectClass::Other);  // the texture
}

TEST(ObjectClassOf, CoversEveryKindThatANodeCanCarry) {
    std::set<ObjectClass> kinds;
    for (const ClassIdentity& identity : ClassIdentities()) kinds.insert(identity.kind);
    for (int kind = int(ObjectClass::Tavrik); kind <= int(ObjectClass::Start); ++kind) {
        EXPECT_TRUE(kinds.contains(ObjectClass(kind))) << kind;
    }
}

TEST(Library, TellsTheReleaseThatItWasMadeFor) {
    EXPECT_EQ(kLibraryVersion, 0x55F03700u);
    EXPECT_EQ(kLibraryVersion >> 16, 22000u);
    EXPECT_EQ((kLibraryVersion >> 8) & 0xFFu, 55u);
    EXPECT_EQ(ParamString(kDescriptionString), "Tavrik");
    EXPECT_EQ(ParamString(kParametersString), "Parameters");
}

}  // namespace
}  // namespace tavrik
