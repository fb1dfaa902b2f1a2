#include "host/sdk/ref.h"

#include <algorithm>
#include <cassert>
#include <unordered_set>

#include "host/sdk/param_block.h"

namespace {

/// Targets that somebody is working on while others may delete them. Scopes nest, so a list with the newest first will do.
class Guard {
 public:
    explicit Guard(const ReferenceTarget* target) : target_(target), outer_(newest_) { newest_ = this; }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;
    ~Guard() { newest_ = outer_; }
    bool Alive() const { return target_ != nullptr; }
    static void Died(const ReferenceTarget* target) {
        for (Guard* guard = newest_; guard != nullptr; guard = guard->outer_) {
            if (guard->target_ == target) guard->target_ = nullptr;
        }
    }

 private:
    static inline Guard* newest_ = nullptr;
    const ReferenceTarget* target_;
    Guard* outer_;
};

struct Message {
    const Interval& changeInt;
    PartID partID;
    RefMessage message;
    SClass_ID sclass;
    BOOL propagate;
};

/// Those that are being filled just now, mostly none.
std::vector<DefaultRemapDir*>& OpenDirectories() {
    static auto* const directories = new std::vector<DefaultRemapDir*>;
    return *directories;
}

bool Contains(const std::vector<ReferenceMaker*>& makers, const ReferenceMaker* maker) {
    return std::find(makers.begin(), makers.end(), maker) != makers.end();
}

/// The makers once each, in the order of their first reference.
std::vector<ReferenceMaker*> Once(const std::vector<ReferenceMaker*>& makers) {
    std::vector<ReferenceMaker*> once;
    once.reserve(makers.size());
    std::unordered_set<const ReferenceMaker*> seen;
    for (ReferenceMaker* maker : makers) {
        if (seen.insert(maker).second) once.push_back(maker);
    }
    return once;
}

/// @param told  targets whose dependents know already: things often depend on one another by several ways
/// @return false when somebody halted it
bool Spread(ReferenceTarget* target, const Message& message, RefTargetHandle sender,
            std::unordered_set<const ReferenceTarget*>& told) {
    if (!told.insert(target).second) return true;
    const Guard guard(target);
    for (ReferenceMaker* dependent : Once(target->Dependents())) {
        if (!guard.Alive()) return true;
        if (!Contains(target->Dependents(), dependent)) continue;  // somebody's answer was to make it let go
        if (message.sclass != NOTIFY_ALL && message.sclass != dependent->SuperClassID()) continue;
        PartID partID = message.partID;  // each may change it for those beyond it
        const RefResult result =
            dependent->NotifyRefChanged(message.changeInt, sender, partID, message.message, message.propagate);
        if (result == REF_HALT) return false;
        if (result == REF_STOP || message.propagate == FALSE) continue;
        if (!guard.Alive() || !Contains(target->Dependents(), dependent)) continue;
        if (auto* const next = dynamic_cast<ReferenceTarget*>(dependent)) {
            const Message onward{message.changeInt, partID, message.message, message.sclass, message.propagate};
            if (!Spread(next, onward, next, told)) return false;
        }
    }
    return true;
}

}  // namespace

ReferenceMaker::~ReferenceMaker() { LetGoOfTargets(); }

RefTargetHandle ReferenceMaker::Registered(int which) const {
    return which < int(targets_.size()) ? targets_[std::size_t(which)] : nullptr;
}

bool ReferenceMaker::RefersTo(const ReferenceTarget* target) const {
    return std::find(targets_.begin(), targets_.end(), target) != targets_.end();
}

bool ReferenceMaker::DependsOn(const ReferenceMaker* maker) const {
    std::vector<const ReferenceMaker*> open{this};
    std::unordered_set<const ReferenceMaker*> seen{this};
    while (!open.empty()) {
        const ReferenceMaker* const next = open.back();
        open.pop_back();
        if (next == maker) return true;
        for (const ReferenceTarget* target : next->targets_) {
            if (target != nullptr && seen.insert(target).second) open.push_back(target);
        }
    }
    return false;
}

RefResult ReferenceMaker::ReplaceReference(int which, RefTargetHandle newTarget, BOOL delOld) {
    // The last part: a maker lets go even of a reference that it doesn't count any more.
    assert(which >= 0 && (which < NumRefs() || newTarget == nullptr));
    RefTargetHandle const old = Registered(which);
    if (newTarget == old) {
        // The maker may hold a pointer that it never registered; after this call it holds none but registered ones.
        SetReference(which, newTarget);
        return REF_SUCCEED;
    }
    if (newTarget != nullptr && (newTarget->dying_ || newTarget->DependsOn(this))) return REF_FAIL;
    if (which >= int(targets_.size())) targets_.resize(std::size_t(which) + 1, nullptr);
    targets_[std::size_t(which)] = newTarget;
    // The new one first: it may be held by nothing else than the old one.
    if (newTarget != nullptr) newTarget->dependents_.push_back(this);
    SetReference(which, newTarget);
    if (old != nullptr) {
        std::vector<ReferenceMaker*>& makers = old->dependents_;
        makers.erase(std::find(makers.begin(), makers.end(), this));
        if (delOld != FALSE) old->MaybeAutoDelete();
    }
    return REF_SUCCEED;
}

void ReferenceMaker::DeleteAllRefsFromMe() {
    for (int i = 0; i < int(targets_.size()); ++i) DeleteReference(i);
}

/// As `DeleteAllRefsFromMe`, without a call to the maker: its class is gone by now.
void ReferenceMaker::LetGoOfTargets() {
    const std::vector<RefTargetHandle> targets = std::move(targets_);
    targets_.clear();
    std::vector<RefTargetHandle> orphans;
    for (RefTargetHandle target : targets) {
        if (target == nullptr) continue;
        std::vector<ReferenceMaker*>& makers = target->dependents_;
        makers.erase(std::find(makers.begin(), makers.end(), this));
        if (makers.empty()) orphans.push_back(target);
    }
    // Nobody refers to these, so none of them goes with another.
    for (RefTargetHandle orphan : orphans) orphan->MaybeAutoDelete();
}

ReferenceTarget::~ReferenceTarget() {
    dying_ = true;
    // Own targets first: whoever hears of the end below could otherwise send a message through this half-gone thing.
    LetGoOfTargets();
    LeaveDependents();
    Guard::Died(this);
    for (DefaultRemapDir* directory : OpenDirectories()) directory->Forget(this);
}

void ReferenceTarget::LeaveDependents() {
    PartID partID = PART_ALL;
    const Interval forever = FOREVER;
    while (!dependents_.empty()) {
        ReferenceMaker* const maker = dependents_.front();
        maker->NotifyRefChanged(forever, this, partID, REFMSG_TARGET_DELETED, FALSE);
        if (!Contains(dependents_, maker)) continue;  // it let go by itself, or went as well
        for (std::size_t i = 0; i < maker->targets_.size(); ++i) {
            if (maker->targets_[i] != this) continue;
            maker->targets_[i] = nullptr;
            maker->SetReference(int(i), nullptr);
        }
        std::erase(dependents_, maker);
        // What has lost a target is not what it was, which those beyond it want to know.
        if (auto* const changed = dynamic_cast<ReferenceTarget*>(maker))
            changed->NotifyDependents(forever, partID, REFMSG_CHANGE);
    }
}

RefTargetHandle ReferenceTarget::Clone(RemapDir&) { return nullptr; }

void ReferenceTarget::BaseClone(ReferenceTarget* from, ReferenceTarget* to, RemapDir& remap) { remap.AddEntry(from, to); }

RefResult ReferenceTarget::NotifyDependents(const Interval& changeInt, PartID partID, RefMessage message, SClass_ID sclass,
                                            BOOL propagate, RefTargetHandle hTarg) {
    std::unordered_set<const ReferenceTarget*> told;
    Spread(this, {changeInt, partID, message, sclass, propagate}, hTarg == nullptr ? this : hTarg, told);
    return REF_SUCCEED;
}

RefResult ReferenceTarget::MaybeAutoDelete() {
    if (!dependents_.empty() || dying_) return REF_FAIL;
    dying_ = true;
    DeleteThis();
    return REF_SUCCEED;
}

RefResult ReferenceTarget::DeleteMe() {
    if (dying_) return REF_FAIL;
    dying_ = true;
    LeaveDependents();  // while it is still whole
    DeleteThis();
    return REF_SUCCEED;
}

DefaultRemapDir::DefaultRemapDir(BOOL noBackPatch) : noBackPatch_(noBackPatch) { OpenDirectories().push_back(this); }

DefaultRemapDir::~DefaultRemapDir() {
    // A link that is mended may have been the last that kept an original alive: entries empty themselves meanwhile.
    for (const auto& [from, to] : entries_) {
        for (int i = 0; noBackPatch_ == FALSE && to != nullptr && i < to->NumRefs(); ++i) {
            RefTargetHandle const clone = FindMapping(to->GetReference(i));
            if (clone != nullptr) to->ReplaceReference(i, clone);
        }
        auto* const block = dynamic_cast<tavrik_host::ParamBlock*>(to);
        if (noBackPatch_ == FALSE && block != nullptr) block->RemapNodePointers(*this);
    }
    std::erase(OpenDirectories(), this);
}

void DefaultRemapDir::Forget(const ReferenceTarget* target) {
    for (auto& entry : entries_) {
        if (entry.first == target || entry.second == target) entry = {};
    }
}

RefTargetHandle DefaultRemapDir::CloneRef(RefTargetHandle target) {
    if (target == nullptr) return nullptr;
    if (RefTargetHandle const known = FindMapping(target)) return known;
    RefTargetHandle const clone = target->Clone(*this);
    if (clone != nullptr && clone != target) AddEntry(target, clone);
    return clone;
}

RefTargetHandle DefaultRemapDir::FindMapping(RefTargetHandle target) {
    for (const auto& [from, to] : entries_) {
        if (from == target && target != nullptr) return to;
    }
    return nullptr;
}

void DefaultRemapDir::AddEntry(RefTargetHandle from, RefTargetHandle to) {
    assert(from != nullptr && to != nullptr && from != to);
    if (FindMapping(from) == nullptr) entries_.emplace_back(from, to);
}
