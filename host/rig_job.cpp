#include "host/rig_job.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/rigged_model.h"

namespace tavrik_host {
namespace {

bool PlanVehicle(const RigJob& job, PlannedVehicle& vehicle, std::string& problem) {
    std::string fault;
    if (PlanRig(job.model, vehicle.wish.options, vehicle.result, fault)) return true;
    problem = fmt::format("{}: {}{}", job.file.string(),
                          job.vehicles.size() > 1 ? fmt::format("of \"{}\", ", vehicle.wish.name) : "", fault);
    return false;
}

/// Of body and wheels, kg.
double WholeMass(const tavrik::WizardResult& result) {
    double mass = double(result.plan.chassis.Mass);
    for (const tavrik::PlannedUnit& unit : result.plan.units) mass += double(unit.wheel.Mass);
    return mass / result.massScale;
}

}  // namespace

bool ReadRigJob(const RigWish& wish, RigJob& job, std::string& problem) {
    job.file = wish.model;
    if (!ReadCarModel(wish.model, wish.import, job.model, job.looks, problem)) return false;
    std::vector<tavrik::VehicleWish> wishes{{"", wish.options}};
    if (!wish.places.empty() && !ReadPlaces(wish.places, wish.options, wishes, problem)) return false;
    for (tavrik::VehicleWish& vehicle : wishes) {
        if (job.model.stoodUp) StandUpWish(vehicle);
        if (vehicle.name.empty()) vehicle.name = wish.name.empty() ? wish.model.stem().string() : wish.name;
        job.vehicles.push_back({std::move(vehicle), {}});
    }
    return true;
}

bool PlanRigJob(RigJob& job, std::string& problem) {
    double massScale = 1.0;
    for (PlannedVehicle& vehicle : job.vehicles) {
        if (!vehicle.wish.options.unit && &vehicle != &job.vehicles.front()) {
            vehicle.wish.options.unit = job.vehicles.front().result.scale;
        }
        if (!PlanVehicle(job, vehicle, problem)) return false;
        massScale = std::max(massScale, vehicle.result.massScale);
    }
    PlannedVehicle& first = job.vehicles.front();
    first.wish.options.towedMass = 0.0;
    for (const PlannedVehicle& vehicle : job.vehicles) {
        if (&vehicle != &first) first.wish.options.towedMass += WholeMass(vehicle.result);
    }
    float lightest = first.result.plan.chassis.Mass;
    for (PlannedVehicle& vehicle : job.vehicles) {
        vehicle.wish.options.leastMassScale = massScale;
        const bool isNew = vehicle.result.massScale < massScale || vehicle.wish.options.towedMass > 0.0;
        if (isNew && !PlanVehicle(job, vehicle, problem)) return false;
        lightest = std::min(lightest, vehicle.result.plan.chassis.Mass);
    }
    for (PlannedVehicle& vehicle : job.vehicles) {
        for (tavrik::PlannedCoupling& coupling : vehicle.result.plan.couplings) {
            coupling.Ruggedness = std::min(coupling.Ruggedness, tavrik::CouplingRuggedness(lightest));
        }
    }
    return true;
}

bool DressRigJob(const RigJob& job, std::vector<DressedCar>& cars, std::string& problem) {
    for (const PlannedVehicle& vehicle : job.vehicles) {
        std::string fault;
        if (DressPlan(job.model, job.looks, vehicle.result, vehicle.wish.options, vehicle.wish.name, cars.emplace_back(),
                      fault)) {
            continue;
        }
        problem = fmt::format("{}: {}", job.file.string(), fault);
        return false;
    }
    return true;
}

}  // namespace tavrik_host
