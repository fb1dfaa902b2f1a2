#include "studio/driving/drive_profile.h"

#include <algorithm>

namespace tavrik_studio {
namespace {

double Milliseconds(DriveProfile::Duration duration) { return std::chrono::duration<double, std::milli>(duration).count(); }

QString Row(const QString& name, std::vector<double> values) {
    std::sort(values.begin(), values.end());
    double sum = 0.0;
    for (const double value : values) sum += value;
    const double mean = sum / double(values.size());
    const double high = values[(values.size() - 1) * 95 / 100];
    return QStringLiteral("%1 %2 %3 %4\n")
        .arg(name, -10)
        .arg(mean, 9, 'f', 2)
        .arg(high, 9, 'f', 2)
        .arg(values.back(), 9, 'f', 2);
}

}  // namespace

void DriveProfile::Begin(Time now) {
    start_ = last_ = now;
    ticks_.clear();
}

void DriveProfile::AddTick(Time now, Duration solver, Duration display, Duration views) {
    if (ticks_.empty()) start_ = now;
    last_ = now;
    ticks_.push_back({solver, display, views});
}

void DriveProfile::AddViewTime(Duration views) {
    if (!ticks_.empty()) ticks_.back().views += views;
}

double DriveProfile::FramesPerSecond() const {
    const double seconds = std::chrono::duration<double>(last_ - start_).count();
    return ticks_.size() < 2 || seconds <= 0.0 ? 0.0 : double(ticks_.size() - 1) / seconds;
}

QString DriveProfile::Report() const {
    if (ticks_.empty()) return QStringLiteral("Nothing was driven.\n");
    const auto values = [this](auto of) {
        std::vector<double> all;
        for (const Tick& tick : ticks_) all.push_back(Milliseconds(of(tick)));
        return all;
    };
    QString text = QStringLiteral("Frames     %1 at %2 a second\n").arg(ticks_.size()).arg(FramesPerSecond(), 0, 'f', 1);
    text += QStringLiteral("ms a frame %1 %2 %3\n").arg("mean", 9).arg("95 %", 9).arg("worst", 9);
    text += Row("solver", values([](const Tick& tick) { return tick.solver; }));
    text += Row("views", values([](const Tick& tick) { return tick.views; }));
    text += Row("display", values([](const Tick& tick) { return tick.display; }));
    text += Row("all", values([](const Tick& tick) { return tick.solver + tick.views + tick.display; }));
    return text;
}

}  // namespace tavrik_studio
