#include "host/sdk/panels.h"

#include <algorithm>

#include "host/sdk/panel_pages.h"

namespace tavrik_host {
namespace {

class PageMap final : public IParamMap2 {
 public:
    PageMap(PanelWindow& page, IParamBlock2& block, MapID map) : page_(page), block_(block), map_(map) {}
    HWND GetHWnd() const override { return &page_; }
    IParamBlock2* GetParamBlock() const override { return &block_; }
    MapID GetMapID() const override { return map_; }

 private:
    PanelWindow& page_;
    IParamBlock2& block_;
    MapID map_;
};

struct OpenPage {
    std::unique_ptr<PanelWindow> window;
    std::unique_ptr<PageMap> map;  // null for a page without parameters
};

/// Whose pages are open.
struct Panel {
    INode* node = nullptr;
    Object* object = nullptr;
};

// Neither is ever destroyed: plug-ins may still close pages when the program's own statics have gone.
std::vector<OpenPage>& OpenPages() {
    static auto* const pages = new std::vector<OpenPage>;
    return *pages;
}

Panel& ThePanel() {
    static auto* const panel = new Panel;
    return *panel;
}

LibraryString libraryString = nullptr;

std::map<const ParamBlockDesc2*, int>& Invalidated() {
    static auto* const invalidated = new std::map<const ParamBlockDesc2*, int>;
    return *invalidated;
}

bool IsOpen(const PanelWindow* page) {
    return std::ranges::any_of(OpenPages(), [&](const OpenPage& open) { return open.window.get() == page; });
}

PanelWindow* FindMapPage(const IParamBlock2& block, MapID map) {
    for (const OpenPage& open : OpenPages()) {
        if (open.map != nullptr && open.map->GetParamBlock() == &block && open.map->GetMapID() == map) return open.window.get();
    }
    return nullptr;
}

/// Puts `proc` in the place of the page's procedure. The old one, unless it is the same, ends; the new one sets the page up.
void SwitchProc(PanelWindow& page, ParamMap2UserDlgProc* proc) {
    ParamMap2UserDlgProc* const old = page.userProc;
    page.userProc = proc;
    if (old != nullptr && old != proc) old->DeleteThis();
    if (proc != nullptr) SendMessageW(&page, WM_INITDIALOG, 0, 0);
}

/// Takes the page out before its procedure ends, so that a procedure that looks at the panel doesn't find it.
void TakeOut(const PanelWindow* page) {
    auto& pages = OpenPages();
    const auto at = std::ranges::find_if(pages, [&](const OpenPage& open) { return open.window.get() == page; });
    if (at == pages.end()) return;
    const OpenPage taken = std::move(*at);
    pages.erase(at);
    SendMessageW(taken.window.get(), WM_DESTROY, 0, 0);
    if (taken.window->userProc != nullptr) taken.window->userProc->DeleteThis();
}

/// Tells a page what one of its controls did. Its procedure may close the page.
void SendCommand(PanelWindow& page, PanelWindow& control, WORD notice) {
    SendMessageW(&page, WM_COMMAND, MAKEWPARAM(WORD(control.id), notice), reinterpret_cast<LPARAM>(&control));
}

}  // namespace

HWND AddPage(HINSTANCE, const MCHAR* dlgTemplate, DLGPROC proc, const MCHAR* title, LPARAM param, DWORD, int category) {
    auto window = std::make_unique<PanelWindow>();
    PanelWindow& page = *window;
    page.text = title == nullptr ? L"" : title;
    page.dialog = int(WORD(reinterpret_cast<std::uintptr_t>(dlgTemplate)));  // templates go by number
    page.proc = proc;
    page.category = category;
    OpenPages().push_back({std::move(window), nullptr});
    SendMessageW(&page, WM_INITDIALOG, 0, param);
    return &page;
}

void DeletePage(HWND page) { TakeOut(page); }

void RegisterPage(HWND page) {
    if (page != nullptr) page->registered = true;
}

int UnregisterPage(HWND page) {
    const bool was = page != nullptr && page->registered;
    if (was) page->registered = false;
    return was ? 1 : 0;
}

void OpenMapPages(IParamBlock2& block) {
    CloseMapPages(block);
    const ParamBlockDesc2& desc = *block.GetDesc();
    for (const ParamMapDef& def : desc.Maps()) {
        auto window = std::make_unique<PanelWindow>();
        PanelWindow& page = *window;
        page.titleString = int(def.title);
        if (libraryString != nullptr && def.title != 0 && desc.cd != nullptr) {
            page.text = libraryString(desc.cd->HInstance(), int(def.title));
        }
        page.dialog = def.dialog;
        auto map = std::make_unique<PageMap>(page, block, def.map);
        page.map = map.get();
        OpenPages().push_back({std::move(window), std::move(map)});
        SwitchProc(page, def.dlgProc);
    }
}

void CloseMapPages(IParamBlock2& block) {
    for (const ParamMapDef& def : block.GetDesc()->Maps()) TakeOut(FindMapPage(block, def.map));
}

void SetPageProc(const ParamBlockDesc2& desc, MapID map, ParamMap2UserDlgProc* proc) {
    for (const OpenPage& open : OpenPages()) {
        if (open.map == nullptr || open.map->GetParamBlock()->GetDesc() != &desc || open.map->GetMapID() != map) continue;
        SwitchProc(*open.window, proc);
        return;
    }
}

IParamMap2* OpenMap(const IParamBlock2& block, MapID map) {
    const PanelWindow* page = FindMapPage(block, map);
    return page == nullptr ? nullptr : page->map;
}

void SetLibraryString(LibraryString find) { libraryString = find; }

int InvalidateCount(const ParamBlockDesc2& desc) {
    const auto at = Invalidated().find(&desc);
    return at == Invalidated().end() ? 0 : at->second;
}

void CountInvalidate(const ParamBlockDesc2& desc) { ++Invalidated()[&desc]; }

void OpenPanel(INode& node) {
    Panel& panel = ThePanel();
    if (panel.node == &node) return;
    Object* const before = panel.object;
    Object* const next = node.GetObjectRef();
    Interface* const host = GetCOREInterface();
    panel.node = nullptr;
    panel.object = nullptr;
    if (before != nullptr) before->EndEditParams(host, 0, next);
    panel.node = &node;
    panel.object = next;
    host->SelectNode(&node);
    if (next != nullptr) next->BeginEditParams(host, 0, before);
}

void ClosePanel() {
    Panel& panel = ThePanel();
    Object* const before = panel.object;
    panel.node = nullptr;
    panel.object = nullptr;
    if (before != nullptr) before->EndEditParams(GetCOREInterface(), 0, nullptr);
}

INode* PanelNode() { return ThePanel().node; }

std::vector<PanelWindow*> Pages() {
    std::vector<PanelWindow*> pages;
    for (const OpenPage& open : OpenPages()) pages.push_back(open.window.get());
    std::ranges::stable_sort(pages, [](const PanelWindow* a, const PanelWindow* b) { return a->category > b->category; });
    return pages;
}

PanelWindow* PageOf(MapID map) {
    const Object* object = ThePanel().object;
    for (const OpenPage& open : OpenPages()) {
        if (object == nullptr || open.map == nullptr || open.map->GetMapID() != map) continue;
        const auto& users = open.map->GetParamBlock()->Dependents();
        if (std::ranges::find(users, object) != users.end()) return open.window.get();
    }
    return nullptr;
}

void PressControl(PanelWindow& page, int control) {
    PanelWindow* button = IsOpen(&page) ? GetDlgItem(&page, control) : nullptr;
    if (button != nullptr && button->enabled) SendCommand(page, *button, BN_CLICKED);
}

void ChooseItem(PanelWindow& page, int control, int item) {
    PanelWindow* combo = IsOpen(&page) ? GetDlgItem(&page, control) : nullptr;
    if (combo == nullptr || !combo->enabled || item < 0 || item >= int(combo->items.size())) return;
    combo->selected = item;
    SendCommand(page, *combo, CBN_SELCHANGE);
}

bool PickNode(IParamBlock2& block, ParamID id, INode* node) {
    const ParamDef* def = block.GetDesc()->FindParam(id);
    if (def == nullptr || def->type != TYPE_INODE) return false;
    if (def->validator != nullptr) {
        PB2Value picked;
        picked.r = node;
        if (def->validator->Validate(picked, block.GetOwner(), id, 0) == FALSE) return false;
    }
    return block.SetValue(id, 0, node) != FALSE;
}

}  // namespace tavrik_host
