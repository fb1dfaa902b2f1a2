#include "tracks/track_query.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <thread>

#include "tests/drive/drive_on_hills.h"
#include "tests/tracks/plain_tracks.h"
#include "tests/tracks/rolled_wheel.h"
#include "tracks/painted_trail.h"

namespace tavrik {
namespace {

using test::Ask;
using test::LockedWheels;
using test::Roll;
using test::TrackAnswer;
using test::TrailOf;

constexpr TimeValue kLater = 1'000'000;
const Point3 kOnTrack = {0.0f, 300.0f, -29.0f};  // a unit inside of the tyre's lowest place

TrackParams Visible() { return {1.0f, 1.0f, 20, 1.0f, 2.0f}; }

TEST(TrackQuery, BeforeTheFirstFrameAllIsWhiteAndFlat) {
    const auto rig = LockedWheels();
    Roll(*rig, 30, 20.0);
    const auto trail = TrailOf(*rig);
    for (const TimeValue tick : {-1, -100'000, std::numeric_limits<TimeValue>::min()}) {
        const TrackAnswer answer = Ask(*trail, {0, 5, -29.0f}, tick, Visible());
        EXPECT_EQ(answer.value, 1.0f);
        EXPECT_EQ(LengthSquared(answer.bump), 0.0f);
    }
}

TEST(TrackQuery, AStretchShowsOnceTheWheelHasLeftIt) {
    const auto rig = LockedWheels();
    Roll(*rig, 30, 20.0);  // sample f ends at 20 (f + 1), at tick 32 f
    const auto trail = TrailOf(*rig);
    const auto darkness = [&](TimeValue tick) { return 1.0f - Ask(*trail, {0, 310, -29.9f}, tick, Visible()).value; };
    EXPECT_EQ(darkness(14 * 32), 0.0f);
    EXPECT_EQ(darkness(15 * 32 - 1), 0.0f);
    EXPECT_GT(darkness(15 * 32), 0.0f);
    EXPECT_EQ(darkness(15 * 32), darkness(kLater));
}

TEST(TrackAccumulate, AddsNothingBeforeTheEndOfItsStretch) {
    TrackSegment segment;
    ASSERT_EQ(Init(segment, ToMatrix3(test::RolledTo({0, 0, 0}, 0.0)), ToMatrix3(test::RolledTo({0, 20, 0}, 0.6)), 30.0f, 10.0f,
                   0, 32, 64, 1),
              SegmentResult::Good);
    TrackSum before, after;
    TrackAccumulate(segment, nullptr, nullptr, {0, 10, -29.0f}, 63, Visible(), before);
    TrackAccumulate(segment, nullptr, nullptr, {0, 10, -29.0f}, 64, Visible(), after);
    EXPECT_EQ(before.value, 0.0f);
    EXPECT_EQ(LengthSquared(before.bump), 0.0f);
    EXPECT_GT(after.value, 0.0f);
}

TEST(TrackQuery, BesideTheTrackAllIsWhite) {
    const auto rig = LockedWheels();
    Roll(*rig, 30, 20.0);
    const auto trail = TrailOf(*rig);
    EXPECT_LT(Ask(*trail, kOnTrack, kLater, Visible()).value, 0.9f);
    EXPECT_EQ(Ask(*trail, {11.0f, 300.0f, -29.0f}, kLater, Visible()).value, 1.0f);
    EXPECT_EQ(Ask(*trail, {0.0f, 300.0f, -30.5f}, kLater, Visible()).value, 1.0f);
}

TEST(TrackQuery, TheSurfaceIsPushedDownUnderTheTyre) {
    const auto rig = LockedWheels();
    Roll(*rig, 30, 20.0);
    const TrackAnswer answer = Ask(*TrailOf(*rig), kOnTrack, kLater, Visible());
    EXPECT_GT(answer.bump.z, 0.0f);  // against the tyre's outward normal
    EXPECT_LT(std::abs(answer.bump.x), answer.bump.z * 0.01f);
}

TEST(TrackQuery, OneSampleARadiusGivesAValueOfTheSameOrderAsTwenty) {
    const auto rig = LockedWheels();
    Roll(*rig, 60, 20.0);
    const auto trail = TrailOf(*rig);
    TrackParams once = Visible(), often = Visible();
    once.brakeIntensity = often.brakeIntensity = 0.0f;
    once.samples = 1;
    double sumOnce = 0.0, sumOften = 0.0;
    int bare = 0;
    for (int i = 0; i < 1000; ++i) {
        const Point3 point = {0.0f, 100.0f + float(i), -29.7f};
        const double depth = -std::log(double(Ask(*trail, point, kLater, once).value));
        sumOnce += depth;
        sumOften += -std::log(double(Ask(*trail, point, kLater, often).value));
        bare += depth == 0.0 ? 1 : 0;
    }
    EXPECT_GT(sumOften, 0.1);
    EXPECT_GT(sumOnce, sumOften * 0.5);
    EXPECT_LT(sumOnce, sumOften * 2.0);
    EXPECT_GT(bare, 0);  // and leaves gaps
}

TEST(TrackQuery, WithBrakesAloneOnlySlipShows) {
    const auto rolling = LockedWheels(), sliding = LockedWheels();
    Roll(*rolling, 30, 20.0, true);
    Roll(*sliding, 30, 20.0, false);
    TrackParams brakes = Visible();
    brakes.generalIntensity = 0.0f;
    const auto depth = [&](const CarRig& rig) {
        return -std::log(Ask(*TrailOf(rig), {0.0f, 300.0f, -29.5f}, kLater, brakes).value);
    };
    EXPECT_GT(depth(*sliding), 0.04f);
    EXPECT_LT(depth(*rolling), depth(*sliding) * 0.2f);
}

TEST(TrackQuery, WithoutAnyIntensityAllIsWhite) {
    const auto rig = LockedWheels();
    Roll(*rig, 30, 20.0);
    TrackParams none = Visible();
    none.generalIntensity = none.brakeIntensity = 0.0f;
    EXPECT_EQ(Ask(*TrailOf(*rig), kOnTrack, kLater, none).value, 1.0f);
}

TEST(TrackQuery, AnEvenTreadPaintsWithoutRelief) {
    const auto rig = LockedWheels();
    Roll(*rig, 30, 20.0);
    const auto trail = TrailOf(*rig);
    const SharedTread treads[] = {EvenTread()};
    TrackParams relief = Visible();
    relief.baseBump = 0.0f;
    const TrackAnswer answer = Ask(*trail, kOnTrack, kLater, relief, treads);
    EXPECT_EQ(LengthSquared(answer.bump), 0.0f);
    EXPECT_LT(answer.value, 0.9f);
}

TEST(TrackQuery, AWheelWhoseTreadIsGonePaintsItsPlainSection) {
    const auto rig = LockedWheels();
    Roll(*rig, 30, 20.0);
    const auto trail = TrailOf(*rig);
    const SharedTread gone[] = {nullptr};
    EXPECT_TRUE(SameBits(Ask(*trail, kOnTrack, kLater, Visible(), gone), Ask(*trail, kOnTrack, kLater, Visible())));
}

TEST(TrackQuery, APointThatIsNoneIsTouchedByNobody) {
    const auto rig = LockedWheels();
    Roll(*rig, 30, 20.0);
    const auto trail = TrailOf(*rig);
    for (const float bad : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        const TrackAnswer answer = Ask(*trail, {0.0f, bad, -29.0f}, kLater, Visible());
        EXPECT_EQ(answer.value, 1.0f);
        EXPECT_EQ(LengthSquared(answer.bump), 0.0f);
    }
}

// -------------------------------------------------------------------------------------------------------- a car that was
// driven

/// The stock car after its six seconds on the hills.
class DrivenCar {
 public:
    CarRig rig;
    std::shared_ptr<const TrackTrail> trail;
    std::vector<test::PlainSegment> plain;

    DrivenCar() {
        ScriptedRun run = test::HillRun(rig);
        std::string problem;
        for (int f = 0; f < 180; ++f) EXPECT_TRUE(DriveFrame(run, problem)) << problem;
        for (int u = 0; u < rig.unitCount; ++u) rig.units[u].wheelHandle = std::uint32_t(10 + u);
        trail = TrailOf(rig);
        plain = test::PlainSegments(rig);
    }

    /// A point at the tyre's skin, or a little beside it, somewhere on the way of a wheel.
    Point3 PointNearTrack(test::TestRandom& random) const {
        const TrackSegment& segment = trail->segments[std::size_t(random.Int(0, trail->count - 1))];
        const Matrix3 frame = ForwardFrame(segment, random.Int(0, segment.steps));
        const double angle = random.Between(0.0, 6.283), rho = double(segment.Radius) + random.Between(-12.0, 3.0);
        const float side = segment.Width * random.Between(-1.3f, 1.3f);
        return TransformPoint({float(rho * std::cos(angle)), float(rho * std::sin(angle)), side}, frame);
    }
};

const DrivenCar& TheDrivenCar() {
    static const DrivenCar& car = *new DrivenCar;
    return car;
}

TEST(TrackQuery, AgreesWithTryingEverySegmentOfADriveToTheLastBit) {
    const DrivenCar& car = TheDrivenCar();
    ASSERT_EQ(std::size_t(car.trail->count), car.plain.size());
    ASSERT_GT(car.trail->count, 200);
    test::TestRandom random(test::TestSeed(621));
    const std::vector<SharedTread> treads(car.trail->wheels.size(), test::LuggedTread());
    int touched = 0, white = 0;
    for (int i = 0; i < test::TestRounds(4'000); ++i) {
        const bool withTread = random.Int(0, 1) == 1;
        const TrackParams params = {random.Between(0.0f, 2.0f), random.Between(0.0f, 2.0f), random.Int(1, 60), 1.0f, 2.0f};
        const Point3 point = car.PointNearTrack(random);
        const TimeValue tick = random.Int(-100, 181 * 160);
        const TrackAnswer fast = Ask(*car.trail, point, tick, params, withTread ? std::span(treads) : std::span<SharedTread>());
        const test::PlainAnswer plain =
            test::PlainQuery(car.plain, point, tick, params, withTread ? test::LuggedTread()->data() : nullptr);
        ASSERT_TRUE(test::SameBits(fast, {plain.value, plain.bump}))
            << test::Digits(point) << " at " << tick << ": " << test::Digits(fast.value) << " for "
            << test::Digits(plain.value);
        touched += plain.touches > 0 ? 1 : 0;
        white += plain.touches == 0 ? 1 : 0;
    }
    EXPECT_GT(touched, 1'000);
    EXPECT_GT(white, 500);
}

TEST(TrackQuery, StoredFramesChangeNoBit) {
    const DrivenCar& car = TheDrivenCar();
    const auto none = TrailOf(car.rig, 0), half = TrailOf(car.rig, car.trail->inverseFrames.size() * sizeof(Matrix3) / 2);
    ASSERT_TRUE(none->inverseFrames.empty());
    ASSERT_FALSE(half->inverseFrames.empty());
    test::TestRandom random(test::TestSeed(622));
    for (int i = 0; i < test::TestRounds(5'000); ++i) {
        const Point3 point = car.PointNearTrack(random);
        const TrackAnswer answer = Ask(*car.trail, point, kLater, Visible());
        ASSERT_TRUE(test::SameBits(answer, Ask(*none, point, kLater, Visible()))) << test::Digits(point);
        ASSERT_TRUE(test::SameBits(answer, Ask(*half, point, kLater, Visible()))) << test::Digits(point);
    }
}

/// One picture: the same points asked by `threads` threads, each its own share of them.
std::vector<TrackAnswer> Picture(const PaintedTrail& painted, const std::vector<Point3>& points, unsigned threads) {
    std::vector<TrackAnswer> picture(points.size());
    const auto paint = [&](unsigned mine) {
        for (std::size_t i = mine; i < points.size(); i += threads) {
            painted.Query(picture[i].value, picture[i].bump, points[i], kLater, Visible());
        }
    };
    std::vector<std::jthread> crew;
    for (unsigned t = 0; t < threads; ++t) crew.emplace_back(paint, t);
    crew.clear();
    return picture;
}

std::vector<Point3> PicturePoints(int count) {
    test::TestRandom random(test::TestSeed(623));
    std::vector<Point3> points;
    for (int i = 0; i < count; ++i) points.push_back(TheDrivenCar().PointNearTrack(random));
    return points;
}

bool SamePicture(const std::vector<TrackAnswer>& a, const std::vector<TrackAnswer>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(TrackAnswer)) == 0;
}

TEST(TrackQueryThreads, AnyNumberOfThreadsPaintsTheSamePicture) {
    const PaintedTrail painted = ResolvePatterns(TheDrivenCar().trail, [](std::uint32_t) { return test::LuggedTread(); });
    const std::vector<Point3> points = PicturePoints(20'000);
    const std::vector<TrackAnswer> one = Picture(painted, points, 1);
    EXPECT_TRUE(SamePicture(one, Picture(painted, points, 2)));
    EXPECT_TRUE(SamePicture(one, Picture(painted, points, 7)));
}

TEST(TrackQueryThreads, APictureIsTheSameWhateverIsBuiltMeanwhile) {
    const DrivenCar& car = TheDrivenCar();
    const std::vector<Point3> points = PicturePoints(10'000);
    auto owned = std::make_shared<const TrackTrail>(*car.trail);  // what a master holds
    SharedTread tread = MakeTread([](float u, float v) { return u + v; });
    const PaintedTrail painted = ResolvePatterns(owned, [&](std::uint32_t) { return tread; });
    const std::vector<TrackAnswer> quiet = Picture(painted, points, 1);
    std::vector<TrackAnswer> busy;
    {
        const PaintedTrail held = painted;
        std::jthread render([&] { busy = Picture(held, points, 2); });
        for (int i = 0; i < 3; ++i) {
            owned = TrailOf(car.rig);
            tread = MakeTread([](float, float) { return 0.0f; });
        }
        owned.reset();
        tread.reset();
    }
    EXPECT_TRUE(SamePicture(quiet, busy));
}

// ------------------------------------------------------------------------------------------------------------ a trail to paint

TEST(ResolvePatterns, AsksOnceAWheel) {
    const auto rig = LockedWheels(3);
    Roll(*rig, 50, 20.0);
    std::vector<std::uint32_t> asked;
    const PaintedTrail painted = ResolvePatterns(TrailOf(*rig), [&](std::uint32_t handle) {
        asked.push_back(handle);
        return handle == 101 ? nullptr : EvenTread();
    });
    EXPECT_EQ(asked, (std::vector<std::uint32_t>{100, 101, 102}));
    ASSERT_TRUE(painted.CanPaint());
    EXPECT_EQ(painted.treads[1], nullptr);
    EXPECT_EQ(painted.treads[2], EvenTread());
}

TEST(ResolvePatterns, LeavesATrailThatIsNotBuiltAlone) {
    int asked = 0;
    const auto count = [&](std::uint32_t) {
        ++asked;
        return EvenTread();
    };
    EXPECT_FALSE(ResolvePatterns(std::make_shared<const TrackTrail>(), count).CanPaint());
    EXPECT_FALSE(ResolvePatterns(nullptr, count).CanPaint());
    EXPECT_EQ(asked, 0);
}

}  // namespace
}  // namespace tavrik
