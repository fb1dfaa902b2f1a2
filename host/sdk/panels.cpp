#include "host/sdk/panels.h"

#include <algorithm>

#include "host/sdk/panel_controls.h"
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
    ReferenceMaker* edited = nullptr;  // its object or, if `isMotion`, its controller
    bool isMotion = false;
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
unsigned long revision = 0;

std::function<void()>& Listener() {
    static auto* const listener = new std::function<void()>;
    return *listener;
}

std::map<const ParamBlockDesc2*, int>& Invalidated() {
    static auto* const invalidated = new std::map<const ParamBlockDesc2*, int>;
    return *invalidated;
}

std::wstring TitleOf(HINSTANCE library, int id) {
    if (id == 0) return L"";
    if (libraryString != nullptr) return libraryString(library, id);
    const MCHAR* const text = FindResourceString(library, id);
    return text == nullptr ? L"" : text;
}

void AddControl(PanelWindow& page, int id, const MCHAR* text) {
    if (id == 0) return;
    auto control = std::make_unique<PanelWindow>();
    control->id = id;
    control->page = &page;
    control->text = text;
    page.controls[id] = std::move(control);
}

/// Makes the controls that the page's library says it has.
void LayOut(PanelWindow& page, HINSTANCE library, int dialog) {
    page.dialog = dialog;
    page.layout = FindResourceDialog(library, dialog);
    if (page.layout == nullptr) return;
    for (const DialogControl& control : page.layout->controls) {
        AddControl(page, control.id, control.text);
        AddControl(page, control.edit, L"");
        AddControl(page, control.labelId, control.label);
        for (const DialogRadio& button : control.buttons) AddControl(page, button.id, button.label);
    }
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
    EndPicking(*taken.window);
    PanelChanged();
    SendMessageW(taken.window.get(), WM_DESTROY, 0, 0);
    if (taken.window->userProc != nullptr) taken.window->userProc->DeleteThis();
}

/// Tells a page what one of its controls did. Its procedure may close the page.
void SendCommand(PanelWindow& page, PanelWindow& control, WORD notice) {
    SendMessageW(&page, WM_COMMAND, MAKEWPARAM(WORD(control.id), notice), reinterpret_cast<LPARAM>(&control));
}

}  // namespace

HWND AddPage(HINSTANCE instance, const MCHAR* dlgTemplate, DLGPROC proc, const MCHAR* title, LPARAM param, DWORD,
             int category) {
    auto window = std::make_unique<PanelWindow>();
    PanelWindow& page = *window;
    page.text = title == nullptr ? L"" : title;
    LayOut(page, instance, int(WORD(reinterpret_cast<std::uintptr_t>(dlgTemplate))));  // templates go by number
    page.proc = proc;
    page.category = category;
    OpenPages().push_back({std::move(window), nullptr});
    PanelChanged();
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
        const HINSTANCE library = desc.cd == nullptr ? nullptr : desc.cd->HInstance();
        page.text = TitleOf(library, int(def.title));
        LayOut(page, library, def.dialog);
        auto map = std::make_unique<PageMap>(page, block, def.map);
        page.map = map.get();
        OpenPages().push_back({std::move(window), std::move(map)});
        PanelChanged();
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

void CountInvalidate(const ParamBlockDesc2& desc) {
    ++Invalidated()[&desc];
    PanelChanged();
}

void PanelChanged() {
    ++revision;
    if (Listener()) Listener()();
}

unsigned long PanelRevision() { return revision; }

void SetPanelListener(std::function<void()> listener) { Listener() = std::move(listener); }

IParamBlock2* BlockOfPage(const PanelWindow& page) {
    return IsOpen(&page) && page.map != nullptr ? page.map->GetParamBlock() : nullptr;
}

namespace {

/// Closes the pages that are open. A controller that the node has no more is gone, and its pages went with it.
/// @return whose they were, or null
ReferenceMaker* EndEditing(ReferenceMaker* next) {
    const Panel before = ThePanel();
    ThePanel() = {};
    if (before.edited == nullptr || (before.isMotion && before.node->GetTMController() != before.edited)) return nullptr;
    before.edited->EndEditParams(GetCOREInterface(), 0, next);
    return before.edited;
}

void Edit(INode& node, ReferenceMaker* edited, bool isMotion) {
    ReferenceMaker* const before = EndEditing(edited);
    ThePanel() = {&node, edited, isMotion};
    GetCOREInterface()->SelectNode(&node);
    if (edited != nullptr) edited->BeginEditParams(GetCOREInterface(), 0, before);
}

}  // namespace

void OpenPanel(INode& node) {
    if (ThePanel().node == &node && !ThePanel().isMotion) return;
    Edit(node, node.GetObjectRef(), false);
}

bool OpenMotionPanel(INode& node) {
    Control* const controller = node.GetTMController();
    if (controller == nullptr) return false;
    if (ThePanel().node != &node || ThePanel().edited != controller) Edit(node, controller, true);
    return true;
}

void ClosePanel() { EndEditing(nullptr); }

INode* PanelNode() { return ThePanel().node; }

std::vector<PanelWindow*> Pages() {
    std::vector<PanelWindow*> pages;
    for (const OpenPage& open : OpenPages()) pages.push_back(open.window.get());
    std::ranges::stable_sort(pages, [](const PanelWindow* a, const PanelWindow* b) { return a->category > b->category; });
    return pages;
}

PanelWindow* PageOf(MapID map) {
    const ReferenceMaker* edited = ThePanel().edited;
    for (const OpenPage& open : OpenPages()) {
        if (edited == nullptr || open.map == nullptr || open.map->GetMapID() != map) continue;
        const auto& users = open.map->GetParamBlock()->Dependents();
        if (std::ranges::find(users, edited) != users.end()) return open.window.get();
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

}  // namespace tavrik_host
