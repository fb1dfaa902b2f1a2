// The map that paints tyre tracks, in a scene.

#include <cmath>
#include <cstring>
#include <thread>

#include "host/sdk/desktop.h"
#include "host/sdk/panel_pages.h"
#include "host/sdk/picking.h"
#include "host/sdk/texture_maps.h"
#include "tests/plugin/plugin_scene.h"
#include "tests/plugin/track_shading.h"

namespace plugin_test {
namespace {

constexpr ParamID kMasterHandle = 0, kGeneral = 1, kBrake = 2, kSamples = 3, kBaseBump = 4, kPatternBump = 5;
constexpr ParamID kPatternMap = 5;  // of a wheel
constexpr int kPickButton = 1116;
constexpr TimeValue kLater = 100'000;

/// A map whose value is known at each place, and which counts what it is asked.
class KnownMap final : public Texmap {
 public:
    float value = 0.5f;
    int updates = 0, fileLoads = 0, asked = 0;
    std::vector<Point3> places;  // of the first questions
    bool placeIsNowhere = true;  // everything but the place in the map is neutral
    Interval updateValid;
    Texmap* inner = nullptr;

    Class_ID ClassID() override { return {77, 1}; }
    AColor EvalColor(ShadeContext&) override { return {}; }
    float EvalMono(ShadeContext& sc) override {
        if (asked++ < 2050) places.push_back(sc.UVW(0));
        if (asked == 1) LookAround(sc);
        return value;
    }
    void LookAround(ShadeContext& sc) {
        const Point3 nothing(0, 0, 0), somewhere(1, 2, 3);
        const Point3 noughts[] = {sc.DUVW(0), sc.P(), sc.V(), sc.CamPos(), sc.Normal()};
        for (const Point3& nought : noughts) placeIsNowhere = placeIsNowhere && nought == nothing;
        placeIsNowhere = placeIsNowhere && sc.CurTime() == 0 && sc.Node() == nullptr && sc.nLights == 0 &&
                         sc.Light(0) == nullptr && sc.EvalEnvironMap(nullptr, nothing) == AColor(0, 0, 0, 1) &&
                         sc.PointTo(somewhere, REF_WORLD) == somewhere && sc.PointFrom(somewhere, REF_OBJECT) == somewhere;
    }
    Point3 EvalNormalPerturb(ShadeContext&) override { return {0, 0, 0}; }
    void Update(TimeValue, Interval& valid) override {
        ++updates;
        updateValid = valid;
    }
    void Reset() override {}
    Interval Validity(TimeValue) override { return FOREVER; }
    ParamDlg* CreateParamDlg(HWND, IMtlParams*) override { return nullptr; }
    void LoadMapFiles(TimeValue) override { ++fileLoads; }
    int NumSubTexmaps() override { return 1; }
    Texmap* GetSubTexmap(int) override { return inner; }
    RefResult NotifyRefChanged(const Interval&, RefTargetHandle, PartID&, RefMessage, BOOL) override { return REF_SUCCEED; }
    RefTargetHandle Clone(RemapDir&) override { return this; }
};

Texmap* NewTexture() { return static_cast<Texmap*>(CreateInstance(TEXMAP_CLASS_ID, kTextureClass)); }

class PluginTracks : public PluginScene {
 public:
    PluginTracks() {
        MakeReady(car, ground);
        Set(kGeneral, 1.0f);
        Set(kMasterHandle, int(car.master->GetHandle()));
    }

    IParamBlock2& Params() { return *texture->GetParamBlockByID(0); }
    template <typename T>
    void Set(ParamID id, T value) {
        ASSERT_TRUE(Params().SetValue(id, 0, value));
    }
    /// Drives off and stops, so that there are tracks, and has the wheels sample their treads.
    void LeaveTracks(int frames = 60) {
        Start(car);
        DriveFrames(frames);
        if (windows.TimerRuns()) Enter();
        PreRender();
    }
    void PreRender() { BroadcastNotification(NOTIFY_PRE_RENDER); }
    void Update(TimeValue t = kLater) {
        Interval valid = FOREVER;
        texture->Update(t, valid);
    }
    /// A place under a wheel's way, a little above its lowest point.
    Point3 OnTrack(TimeValue t = 40 * 160) const {
        return PlaceOf(*car.wheels[0], t).GetTrans() - Point3(0, 0, FloatOf(*car.wheels[0], 0) - 1.0f);
    }
    AColor ColorAt(const Point3& point, TimeValue t = kLater) {
        WorldPoint place;
        place.world = point;
        place.time = t;
        return texture->EvalColor(place);
    }
    Point3 BumpAt(const Point3& point, TimeValue t = kLater) {
        WorldPoint place;
        place.world = point;
        place.time = t;
        return texture->EvalNormalPerturb(place);
    }
    float ValueAt(const Point3& point, TimeValue t = kLater) { return ColorAt(point, t).r; }
    bool IsNeutral() { return ColorAt(OnTrack()) == AColor(1, 1, 1, 1) && LengthSquared(BumpAt(OnTrack())) == 0.0f; }
    void GiveTread(Texmap* map) {
        for (INode* wheel : car.wheels) ASSERT_TRUE(BlockOf(*wheel).SetValue(kPatternMap, 0, map));
    }

    Car car = AddCar();
    INode& ground = AddGround();
    Texmap* texture = NewTexture();
    Holder material{texture};
};

// ------------------------------------------------------------------------------------------------------------------- painting

TEST_F(PluginTracks, ADrivenCarLeavesGreyOnWhite) {
    LeaveTracks();
    Update();
    const AColor color = ColorAt(OnTrack());
    EXPECT_LT(color.r, 0.9f);
    EXPECT_EQ(color.r, color.g);
    EXPECT_EQ(color.r, color.b);
    EXPECT_EQ(color.a, 1.0f);
    EXPECT_EQ(ColorAt(OnTrack() + Point3(40, 0, 0)), AColor(1, 1, 1, 1));
}

TEST_F(PluginTracks, GreyIsTheMeanOfTheColour) {
    LeaveTracks();
    Update();
    WorldPoint place;
    place.world = OnTrack();
    place.time = kLater;
    const AColor c = texture->EvalColor(place);
    EXPECT_EQ(texture->EvalMono(place), (c.r + c.g + c.b) / 3.0f);
}

TEST_F(PluginTracks, TracksAppearAsTheCarPasses) {
    LeaveTracks();
    Update();
    EXPECT_EQ(ValueAt(OnTrack(), 0), 1.0f);
    EXPECT_EQ(ValueAt(OnTrack(), 20 * 160), 1.0f);
    EXPECT_LT(ValueAt(OnTrack(), 55 * 160), 1.0f);
}

TEST_F(PluginTracks, PointsAreTakenToTheWorld) {
    LeaveTracks();
    Update();
    WorldPoint place;
    place.world = OnTrack();
    place.time = kLater;
    const float here = texture->EvalColor(place).r;
    place.shift = Point3(64, -128, 32);
    EXPECT_NEAR(texture->EvalColor(place).r, here, 1e-3f);
}

TEST_F(PluginTracks, BumpIsToldAlongTheSurfacesTwoDirections) {
    LeaveTracks();
    Update();
    Set(kBaseBump, 4.0f);
    Update();
    // At a shoulder of the track the tyre pushes sideways.
    const Point3 bump = BumpAt(OnTrack() + Point3(7, 0, 0));
    EXPECT_NE(bump.x, 0.0f);
    EXPECT_EQ(bump.z, 0.0f);
}

TEST_F(PluginTracks, WithoutAMasterAllIsWhiteAndFlat) {
    LeaveTracks();
    for (const int handle : {0, 9999, int(car.wheels[0]->GetHandle()), int(ground.GetHandle()), -1}) {
        Set(kMasterHandle, handle);
        Update();
        EXPECT_TRUE(IsNeutral()) << handle;
    }
}

TEST_F(PluginTracks, WithoutARunAllIsWhiteAndFlat) {
    Update();
    EXPECT_TRUE(IsNeutral());
}

TEST_F(PluginTracks, ADeletedMasterIsNoticedAtTheNextUpdate) {
    LeaveTracks();
    Update();
    const Point3 point = OnTrack();
    GetCOREInterface()->DeleteNode(car.master);
    EXPECT_LT(ValueAt(point), 1.0f);  // a render that has begun goes on
    Update();
    EXPECT_EQ(ColorAt(point), AColor(1, 1, 1, 1));
}

TEST_F(PluginTracks, SettingsAreReadAtTheUpdate) {
    LeaveTracks();
    Update();
    const float before = ValueAt(OnTrack());
    Set(kGeneral, 0.0f);
    Set(kBrake, 0.0f);
    EXPECT_EQ(ValueAt(OnTrack()), before);
    Update();
    EXPECT_EQ(ValueAt(OnTrack()), 1.0f);
}

TEST_F(PluginTracks, NoMapNoTimeAndNoPlaceGetsTheAnswerOfAnother) {
    LeaveTracks();
    Update();
    Texmap* const strong = NewTexture();
    const Holder held(strong);
    strong->GetParamBlockByID(0)->SetValue(kMasterHandle, 0, int(car.master->GetHandle()));
    strong->GetParamBlockByID(0)->SetValue(kGeneral, 0, 10.0f);
    Interval valid = FOREVER;
    strong->Update(kLater, valid);
    WorldPoint place;
    place.world = OnTrack();
    place.time = kLater;
    const float weak = ValueAt(place.world);
    const Point3 bump = BumpAt(place.world);
    ASSERT_GT(LengthSquared(bump), 0.0f);
    EXPECT_LT(strong->EvalColor(place).r, weak);
    EXPECT_EQ(ValueAt(place.world), weak);
    EXPECT_EQ(ValueAt(place.world, 0), 1.0f);
    EXPECT_EQ(BumpAt(place.world), bump);
    EXPECT_EQ(ValueAt(place.world + Point3(40, 0, 0)), 1.0f);
    EXPECT_EQ(BumpAt(place.world + Point3(40, 0, 0)), Point3(0, 0, 0));
    EXPECT_EQ(ValueAt(place.world), weak);
}

TEST_F(PluginTracks, SamplesThatNoControlLetsThroughEndAllTheSame) {
    LeaveTracks(20);
    for (const int samples : {0, -5, 2'000'000'000}) {
        Set(kSamples, samples);
        Update();
        EXPECT_TRUE(std::isfinite(ValueAt(OnTrack(10 * 160)))) << samples;
    }
}

TEST_F(PluginTracks, MapHoldsForTheInstantOnly) {
    Interval valid = FOREVER;
    texture->Update(480, valid);
    EXPECT_EQ(valid, Interval(480, 480));
    EXPECT_EQ(texture->Validity(32), Interval(32, 32));
}

TEST_F(PluginTracks, UvTransformIsTheIdentity) {
    Matrix3 transform(FALSE);
    texture->GetUVTransform(transform);
    EXPECT_TRUE(transform == Matrix3(TRUE));
}

// ------------------------------------------------------------------------------------------------- when tracks are built anew

TEST_F(PluginTracks, ARunShowsWhenItHasEnded) {
    Start(car);
    DriveFrames(60);
    Update();
    EXPECT_TRUE(IsNeutral());
    Enter();
    Update();
    EXPECT_FALSE(IsNeutral());
}

TEST_F(PluginTracks, UnlockingWipesTheTracks) {
    LeaveTracks();
    Press(*car.master, kCarSetup, kUnlock);
    Update();
    EXPECT_TRUE(IsNeutral());
}

TEST_F(PluginTracks, LockingAnewWipesTheTracks) {
    LeaveTracks();
    Press(*car.master, kCarSetup, kLock);
    Update();
    EXPECT_TRUE(IsNeutral());
}

TEST_F(PluginTracks, OtherEditsLeaveTheTracks) {
    LeaveTracks();
    const Point3 point = OnTrack();
    plugin_test::Set(*car.wheels[0], 0, 10.0f);
    Update();
    EXPECT_LT(ValueAt(point), 1.0f);
}

TEST_F(PluginTracks, AWipedRecordingTakesItsTracksAlong) {
    LeaveTracks();
    const Point3 point = OnTrack();
    Press(*car.master, kAnimation, kResetAnimation);
    Update();
    EXPECT_EQ(ValueAt(point), 1.0f);
}

TEST_F(PluginTracks, ARecordingThatIsLoadedHasItsTracks) {
    LeaveTracks();
    const Point3 point = OnTrack();
    Update();
    const float before = ValueAt(point);
    const std::string bytes = RecordingOf(*car.master);
    Press(*car.master, kCarSetup, kLock);
    Update();
    EXPECT_EQ(ValueAt(point), 1.0f);
    ASSERT_TRUE(LoadRecording(*car.master, bytes));
    Update();
    EXPECT_EQ(ValueAt(point), before);
}

TEST_F(PluginTracks, EveryCarOfARunHasTracksOfItsOwn) {
    // A trailer in tow: both are driven, and each texture shows one of them.
    const Car trailer = AddCar({0, -580, 0});
    INode& hitch = AddNode(kHitchClass, At(0, -279, 51));
    INode& tongue = AddNode(kTongueClass, At(0, -301, 51));
    plugin_test::Set(hitch, 2, &tongue);
    MakeReady(trailer, ground);
    MakeReady(car, ground);
    LeaveTracks();
    const auto under = [](INode& wheel) {
        return PlaceOf(wheel, 30 * 160).GetTrans() - Point3(0, 0, FloatOf(wheel, 0) - 1.0f);
    };
    Point3 trailersPlace = under(*trailer.wheels[0]);
    for (INode* wheel : trailer.wheels) {
        if (under(*wheel).y < trailersPlace.y) trailersPlace = under(*wheel);  // where the car in front never was
    }
    Update();
    EXPECT_LT(ValueAt(OnTrack()), 1.0f);
    EXPECT_EQ(ValueAt(trailersPlace), 1.0f);
    Set(kMasterHandle, int(trailer.master->GetHandle()));
    Update();
    EXPECT_LT(ValueAt(trailersPlace), 1.0f);
}

TEST_F(PluginTracks, ARenderKeepsItsTracksWhateverIsBuiltMeanwhile) {
    auto* const tread = new KnownMap;
    GiveTread(tread);
    LeaveTracks();
    PreRender();
    Update();
    const Point3 middle = OnTrack();
    std::vector<Point3> points;
    for (int i = 0; i < 2'000; ++i) points.push_back(middle + Point3(float(i % 20) - 10.0f, float(i / 20) - 50.0f, 0.0f));
    std::vector<float> quiet, busy(points.size());
    for (const Point3& point : points) quiet.push_back(ValueAt(point));
    std::jthread render([&] {
        for (std::size_t i = 0; i < points.size(); ++i) busy[i] = ValueAt(points[i]);
    });
    tread->value = 0.9f;
    PreRender();
    Press(*car.master, kCarSetup, kUnlock);
    GetCOREInterface()->DeleteNode(car.wheels[0]);
    render.join();
    EXPECT_TRUE(std::memcmp(quiet.data(), busy.data(), quiet.size() * sizeof(float)) == 0);
}

// ------------------------------------------------------------------------------------------------------------------------
// treads

TEST_F(PluginTracks, AtEachRenderEveryEntryOfATreadIsAskedOnce) {
    auto* const tread = new KnownMap;
    ASSERT_TRUE(BlockOf(*car.wheels[1]).SetValue(kPatternMap, 0, static_cast<Texmap*>(tread)));
    EXPECT_EQ(tread->asked, 0);
    PreRender();
    EXPECT_EQ(tread->asked, 512 * 2048);
    EXPECT_EQ(tread->updates, 1);
    EXPECT_EQ(tread->updateValid, Interval(TIME_NegInfinity, TIME_NegInfinity));
    EXPECT_EQ(tread->fileLoads, 1);
}

TEST_F(PluginTracks, ATreadIsAskedFromNowhereColumnByColumn) {
    auto* const tread = new KnownMap;
    ASSERT_TRUE(BlockOf(*car.wheels[1]).SetValue(kPatternMap, 0, static_cast<Texmap*>(tread)));
    PreRender();
    EXPECT_TRUE(tread->placeIsNowhere);
    ASSERT_EQ(tread->places.size(), 2050u);
    EXPECT_EQ(tread->places[0], Point3(0, 0, 0));
    EXPECT_EQ(tread->places[1], Point3(0, 1.0f / 2047.0f, 0));
    EXPECT_EQ(tread->places[2047], Point3(0, 1, 0));
    EXPECT_EQ(tread->places[2048], Point3(1.0f / 511.0f, 0, 0));
}

TEST_F(PluginTracks, WithoutATreadMapARenderPaintsEvenlyAcrossTheTyre) {
    LeaveTracks();
    const Point3 middle = OnTrack(), shoulder = middle + Point3(5, 0, 0);
    Set(kBaseBump, 0.0f);
    Update();
    const float even = ValueAt(shoulder);
    EXPECT_EQ(LengthSquared(BumpAt(middle)), 0.0f);
    for (INode* wheel : car.wheels) GetCOREInterface()->DeleteNode(wheel);
    Update();
    EXPECT_LT(even, ValueAt(shoulder));  // full weight up to the edge, where the plain section gets thin
}

TEST_F(PluginTracks, MapsInTheSlotsOfATreadReadTheirFilesToo) {
    auto* const tread = new KnownMap;
    auto* const inner = new KnownMap;
    auto* const innermost = new KnownMap;
    const Holder holdInner(inner), holdInnermost(innermost);
    tread->inner = inner;
    inner->inner = innermost;
    ASSERT_TRUE(BlockOf(*car.wheels[1]).SetValue(kPatternMap, 0, static_cast<Texmap*>(tread)));
    PreRender();
    EXPECT_EQ(inner->fileLoads, 1);
    EXPECT_EQ(innermost->fileLoads, 1);
    EXPECT_EQ(inner->updates, 0);
}

TEST_F(PluginTracks, ATreadOfNothingPressesOnNothing) {
    auto* const tread = new KnownMap;
    tread->value = 0.0f;
    GiveTread(tread);
    LeaveTracks();
    PreRender();
    Update();
    EXPECT_EQ(ValueAt(OnTrack()), 1.0f);
}

TEST_F(PluginTracks, AStrongerTreadPaintsDarker) {
    auto* const tread = new KnownMap;
    GiveTread(tread);
    LeaveTracks();
    tread->value = 0.1f;
    PreRender();
    Update();
    const float weak = ValueAt(OnTrack());
    tread->value = 0.9f;
    PreRender();
    EXPECT_EQ(ValueAt(OnTrack()), weak);  // until the next update
    Update();
    EXPECT_LT(ValueAt(OnTrack()), weak);
}

TEST_F(PluginTracks, AWheelThatIsGonePaintsItsPlainSection) {
    LeaveTracks();
    const Point3 point = OnTrack();
    auto* const tread = new KnownMap;
    tread->value = 0.0f;
    GiveTread(tread);
    PreRender();
    Update();
    ASSERT_EQ(ValueAt(point), 1.0f);
    for (INode* wheel : car.wheels) GetCOREInterface()->DeleteNode(wheel);
    Update();
    EXPECT_LT(ValueAt(point), 1.0f);
}

TEST_F(PluginTracks, BeforeTheFirstRenderEveryTreadIsEmpty) {
    Start(car);
    DriveFrames(60);
    Enter();
    Update();
    EXPECT_EQ(ValueAt(OnTrack()), 1.0f);
    PreRender();
    Update();
    EXPECT_LT(ValueAt(OnTrack()), 1.0f);
}

TEST_F(PluginTracks, ANodeThatIsNoWheelHasNoTread) {
    LeaveTracks();
    const Point3 point = OnTrack();
    auto* const tread = new KnownMap;
    tread->value = 0.0f;
    GiveTread(tread);
    PreRender();
    Update();
    ASSERT_EQ(ValueAt(point), 1.0f);
    // The handles of the wheels lead to other objects now.
    for (INode* wheel : car.wheels) {
        const ULONG handle = wheel->GetHandle();
        GetCOREInterface()->DeleteNode(wheel);
        auto* const sphere = static_cast<Object*>(CreateInstance(HELPER_CLASS_ID, kSphereClass));
        ASSERT_NE(tavrik_host::CreateNode(sphere, L"No wheel", nullptr, handle), nullptr);
    }
    Update();
    EXPECT_LT(ValueAt(point), 1.0f);
}

// -------------------------------------------------------------------------------------------------------------- picking a
// master

class PluginTrackPage : public PluginTracks {
 public:
    PluginTrackPage() {
        dialog = texture->CreateParamDlg(nullptr, &editor);
        for (tavrik_host::PanelWindow* page : tavrik_host::Pages()) {
            if (page->dialog == 134) rollout = page;
        }
    }
    ~PluginTrackPage() override { Close(); }
    PluginTrackPage(const PluginTrackPage&) = delete;
    PluginTrackPage& operator=(const PluginTrackPage&) = delete;

    void Close() {
        if (dialog != nullptr) dialog->DeleteThis();
        dialog = nullptr;
    }
    tavrik_host::PanelWindow& Button() { return *GetDlgItem(rollout, kPickButton); }
    void PressPick() { tavrik_host::PressControl(*rollout, kPickButton); }
    int MasterHandle() { return Params().GetInt(kMasterHandle); }
    static PickModeCallback* Mode() { return GetCOREInterface()->GetCurPickMode(); }

    Editor editor;
    ParamDlg* dialog = nullptr;
    tavrik_host::PanelWindow* rollout = nullptr;
};

TEST_F(PluginTrackPage, ButtonShowsTheMastersName) {
    ASSERT_NE(rollout, nullptr);
    EXPECT_EQ(Button().text, car.master->GetName());
    EXPECT_TRUE(Button().isCheckButton);
    EXPECT_EQ(Button().highlight, 0xC0FF80u);
}

TEST_F(PluginTrackPage, ButtonSaysNoneWithoutAMaster) {
    Close();
    Set(kMasterHandle, 0);
    dialog = texture->CreateParamDlg(nullptr, &editor);
    for (tavrik_host::PanelWindow* page : tavrik_host::Pages()) {
        if (page->dialog == 134) rollout = page;
    }
    EXPECT_EQ(Button().text, L"None");
}

TEST_F(PluginTrackPage, PressedButtonPicksAMaster) {
    Set(kMasterHandle, 0);
    PressPick();
    ASSERT_NE(Mode(), nullptr);
    EXPECT_TRUE(Button().checked);
    EXPECT_TRUE(tavrik_host::ClickNode(car.master));
    EXPECT_EQ(Mode(), nullptr);
    EXPECT_FALSE(Button().checked);
    EXPECT_EQ(MasterHandle(), int(car.master->GetHandle()));
    EXPECT_EQ(Button().text, car.master->GetName());
}

TEST_F(PluginTrackPage, OnlyAMasterCanBePicked) {
    Set(kMasterHandle, 0);
    INode* const empty = tavrik_host::CreateNode(nullptr, L"Empty");
    PressPick();
    for (INode* const other : {static_cast<INode*>(nullptr), car.wheels[0], &ground, empty}) {
        EXPECT_FALSE(tavrik_host::ClickNode(other));
        EXPECT_NE(Mode(), nullptr);
    }
    EXPECT_EQ(MasterHandle(), 0);
    tavrik_host::RightClickView();
}

TEST_F(PluginTrackPage, RightClickEndsPicking) {
    PressPick();
    tavrik_host::RightClickView();
    EXPECT_EQ(Mode(), nullptr);
    EXPECT_FALSE(Button().checked);
    EXPECT_EQ(MasterHandle(), int(car.master->GetHandle()));
}

TEST_F(PluginTrackPage, ATextureThatGoesEndsItsPicking) {
    PressPick();
    Close();
    material.Drop();
    EXPECT_EQ(Mode(), nullptr);
    EXPECT_FALSE(tavrik_host::ClickNode(car.master));
}

TEST_F(PluginTrackPage, ButtonsAreHandedBack) {
    EXPECT_EQ(tavrik_host::HeldButtons(), 1);
    Close();
    EXPECT_EQ(tavrik_host::HeldButtons(), 0);
}

TEST_F(PluginTrackPage, ACloneNamesTheSameMaster) {
    Holder copy(nullptr);
    {
        DefaultRemapDir remap;
        copy.ReplaceReference(0, texture->Clone(remap));
    }
    auto* const cloned = static_cast<Texmap*>(copy.GetReference(0));
    ASSERT_NE(cloned, texture);
    EXPECT_EQ(cloned->GetParamBlockByID(0)->GetInt(kMasterHandle), int(car.master->GetHandle()));
    EXPECT_NE(cloned->GetParamBlockByID(0), &Params());
}

TEST_F(PluginTrackPage, ResetBringsTheDefaultsBack) {
    Set(kSamples, 3);
    texture->Reset();
    EXPECT_EQ(Params().GetInt(kSamples), 20);
    EXPECT_EQ(Params().GetFloat(kGeneral), 0.0f);
    EXPECT_EQ(Params().GetFloat(kPatternBump), 2.0f);
}

}  // namespace
}  // namespace plugin_test
