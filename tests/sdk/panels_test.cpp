#include "host/sdk/panels.h"

#include <gtest/gtest.h>

#include "host/sdk/panel_pages.h"
#include "host/sdk/standin.h"
#include "tests/sdk/edited_object.h"

namespace {

using edited::EditedObject;
using edited::Table;
using namespace tavrik_host;

struct Heard {
    UINT message;
    WORD control, notice;
    bool operator==(const Heard&) const = default;
};

/// Keeps what it hears.
class Listener final : public ParamMap2UserDlgProc {
 public:
    INT_PTR DlgProc(TimeValue, IParamMap2* map, HWND window, UINT message, WPARAM wParam, LPARAM lParam) override {
        heard.push_back({message, LOWORD(wParam), HIWORD(wParam)});
        lastMap = map;
        lastWindow = window;
        lastSender = lParam;
        if (message == WM_COMMAND && closeOnCommand) ClosePanel();
        return 5;
    }
    void DeleteThis() override { ++ends; }

    std::vector<Heard> heard;
    int ends = 0;
    IParamMap2* lastMap = nullptr;
    HWND lastWindow = nullptr;
    LPARAM lastSender = 0;
    bool closeOnCommand = false;
};

struct PageCall {
    HWND window = nullptr;
    UINT message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
};
PageCall lastCall;

INT_PTR KeepCall(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    lastCall = {window, message, wParam, lParam};
    return 9;
}

class Panels : public testing::Test {
 public:
    Panels() {
        ResetScene();
        object = new EditedObject;
        other = new EditedObject;
        node = CreateNode(object, L"Edited");
        otherNode = CreateNode(other, L"Other");
        plain = CreateNode(nullptr, L"Plain");
        edited::GuestValidator().welcome = nullptr;
        edited::GuestValidator().asked = 0;
    }
    ~Panels() override { ResetScene(); }
    Panels(const Panels&) = delete;
    Panels& operator=(const Panels&) = delete;

    Listener listener;  // outlives the scene's pages: the destructor's body closes them
    EditedObject *object = nullptr, *other = nullptr;
    INode *node = nullptr, *otherNode = nullptr, *plain = nullptr;
};

TEST_F(Panels, OpeningShowsAPageForEachRolloutInDeclaredOrder) {
    OpenPanel(*node);
    const std::vector<PanelWindow*> pages = Pages();
    ASSERT_EQ(pages.size(), 2u);
    EXPECT_EQ(pages[0]->dialog, 130);
    EXPECT_EQ(pages[1]->dialog, 131);
    EXPECT_EQ(pages[0]->map->GetParamBlock(), object->block);
    EXPECT_EQ(pages[1]->map->GetMapID(), 1);
    EXPECT_EQ(pages[1]->map->GetHWnd(), pages[1]);
}

TEST_F(Panels, OpeningSelectsTheNode) {
    OpenPanel(*node);
    EXPECT_EQ(PanelNode(), node);
    EXPECT_TRUE(node->Selected());
    EXPECT_EQ(object->begun, 1);
}

TEST_F(Panels, OpeningWhatIsOpenDoesNothing) {
    OpenPanel(*node);
    OpenPanel(*node);
    EXPECT_EQ(object->begun, 1);
    EXPECT_EQ(Pages().size(), 2u);
}

TEST_F(Panels, OpeningAnotherNodeClosesTheFirst) {
    OpenPanel(*node);
    OpenPanel(*otherNode);
    EXPECT_EQ(object->ended, 1);
    EXPECT_EQ(object->wentTo, other);
    EXPECT_EQ(other->cameFrom, object);
    ASSERT_EQ(Pages().size(), 2u);
    EXPECT_EQ(Pages()[0]->map->GetParamBlock(), other->block);
}

TEST_F(Panels, NodeWithoutObjectHasNoPages) {
    OpenPanel(*node);
    OpenPanel(*plain);
    EXPECT_EQ(PanelNode(), plain);
    EXPECT_TRUE(Pages().empty());
}

TEST_F(Panels, ClosingTakesAllPagesAway) {
    object->withAbout = true;
    OpenPanel(*node);
    ASSERT_EQ(Pages().size(), 3u);
    ClosePanel();
    EXPECT_TRUE(Pages().empty());
    EXPECT_EQ(PanelNode(), nullptr);
    EXPECT_EQ(object->ended, 1);
}

TEST_F(Panels, ClosingWhatIsClosedDoesNothing) {
    ClosePanel();
    EXPECT_EQ(object->ended, 0);
}

TEST_F(Panels, PageOfALowerCategoryStandsLast) {
    HWND late = AddPage(nullptr, MAKEINTRESOURCEW(115), KeepCall, L"About", 0, 0, 4000);
    OpenPanel(*node);
    ASSERT_EQ(Pages().size(), 3u);
    EXPECT_EQ(Pages()[2], late);
    DeletePage(late);
}

TEST_F(Panels, DeletingTheNodeClosesItsPages) {
    object->procOfSecond = &listener;
    OpenPanel(*node);
    GetCOREInterface()->DeleteNode(node);
    EXPECT_TRUE(Pages().empty());
    EXPECT_EQ(PanelNode(), nullptr);
    EXPECT_EQ(listener.ends, 1);
}

TEST_F(Panels, BlockThatGoesTakesItsPagesAlong) {
    {
        EditedObject loose;
        edited::Class().BeginEditParams(GetCOREInterface(), &loose, 0, nullptr);
        ASSERT_EQ(Pages().size(), 2u);
    }
    EXPECT_TRUE(Pages().empty());
}

TEST_F(Panels, BlockKnowsItsOpenRollouts) {
    EXPECT_EQ(object->block->GetMap(1), nullptr);
    OpenPanel(*node);
    ASSERT_NE(object->block->GetMap(1), nullptr);
    EXPECT_EQ(object->block->GetMap(1)->GetHWnd(), PageOf(1));
    EXPECT_EQ(object->block->GetMap(7), nullptr);
    EXPECT_EQ(other->block->GetMap(1), nullptr);
}

TEST_F(Panels, PageOfAnUnknownRolloutIsNull) {
    EXPECT_EQ(PageOf(0), nullptr);
    OpenPanel(*node);
    EXPECT_EQ(PageOf(0), Pages()[0]);
    EXPECT_EQ(PageOf(7), nullptr);
}

TEST_F(Panels, ProcedureSetsItsPageUpAtOnce) {
    OpenPanel(*node);
    Table().SetUserDlgProc(1, &listener);
    EXPECT_EQ(listener.heard, (std::vector<Heard>{{WM_INITDIALOG, 0, 0}}));
    EXPECT_EQ(listener.lastWindow, PageOf(1));
    EXPECT_EQ(listener.lastMap, object->block->GetMap(1));
}

TEST_F(Panels, ProcedureWithoutOpenPagesHearsNothing) {
    Table().SetUserDlgProc(1, &listener);
    OpenPanel(*node);
    EXPECT_TRUE(listener.heard.empty());
    EXPECT_EQ(listener.ends, 0);
}

TEST_F(Panels, ProcedureForAnUnknownRolloutHearsNothing) {
    OpenPanel(*node);
    Table().SetUserDlgProc(7, &listener);
    EXPECT_TRUE(listener.heard.empty());
}

TEST_F(Panels, NullTakesTheProcedureAway) {
    OpenPanel(*node);
    Table().SetUserDlgProc(1, &listener);
    Table().SetUserDlgProc(1, nullptr);
    EXPECT_EQ(listener.ends, 1);
    PressControl(*PageOf(1), 1023);
    EXPECT_EQ(listener.heard.size(), 1u);
}

TEST_F(Panels, AnotherProcedureEndsTheFirst) {
    Listener second;
    OpenPanel(*node);
    Table().SetUserDlgProc(1, &listener);
    Table().SetUserDlgProc(1, &second);
    EXPECT_EQ(listener.ends, 1);
    EXPECT_EQ(second.heard.size(), 1u);
    ClosePanel();
    EXPECT_EQ(listener.ends, 1);
    EXPECT_EQ(second.ends, 1);
}

TEST_F(Panels, SameProcedureAgainDoesNotEnd) {
    OpenPanel(*node);
    Table().SetUserDlgProc(1, &listener);
    Table().SetUserDlgProc(1, &listener);
    EXPECT_EQ(listener.ends, 0);
}

TEST_F(Panels, ClosingEndsAttachedProcedures) {
    object->procOfSecond = &listener;
    OpenPanel(*node);
    EXPECT_EQ(listener.ends, 0);
    ClosePanel();
    EXPECT_EQ(listener.ends, 1);
}

TEST_F(Panels, PressedButtonIsACommandWithItsNumber) {
    object->procOfSecond = &listener;
    OpenPanel(*node);
    PressControl(*PageOf(1), 1023);
    ASSERT_EQ(listener.heard.size(), 2u);
    EXPECT_EQ(listener.heard[1], (Heard{WM_COMMAND, 1023, BN_CLICKED}));
    EXPECT_EQ(listener.lastSender, reinterpret_cast<LPARAM>(GetDlgItem(PageOf(1), 1023)));
}

TEST_F(Panels, DisabledButtonCannotBePressed) {
    object->procOfSecond = &listener;
    OpenPanel(*node);
    EnableWindow(GetDlgItem(PageOf(1), 1023), FALSE);
    PressControl(*PageOf(1), 1023);
    EXPECT_EQ(listener.heard.size(), 1u);
}

TEST_F(Panels, ButtonMayCloseItsOwnPage) {
    object->procOfSecond = &listener;
    listener.closeOnCommand = true;
    OpenPanel(*node);
    PressControl(*PageOf(1), 1023);
    EXPECT_TRUE(Pages().empty());
    EXPECT_EQ(listener.ends, 1);
}

TEST_F(Panels, ChosenItemIsSelectedBeforeTheCommand) {
    object->procOfSecond = &listener;
    OpenPanel(*node);
    HWND combo = GetDlgItem(PageOf(1), 1110);
    for (const wchar_t* item : {L"Sport", L"General"}) SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item));
    ChooseItem(*PageOf(1), 1110, 1);
    ASSERT_EQ(listener.heard.size(), 2u);
    EXPECT_EQ(listener.heard[1], (Heard{WM_COMMAND, 1110, CBN_SELCHANGE}));
    EXPECT_EQ(SendMessageW(combo, CB_GETCURSEL, 0, 0), 1);
}

TEST_F(Panels, ItemThatIsNotThereCannotBeChosen) {
    object->procOfSecond = &listener;
    OpenPanel(*node);
    ChooseItem(*PageOf(1), 1110, 0);
    ChooseItem(*PageOf(1), 1110, -1);
    EXPECT_EQ(listener.heard.size(), 1u);
}

TEST_F(Panels, ComboFillsSelectsAndEmpties) {
    OpenPanel(*node);
    HWND combo = GetDlgItem(PageOf(1), 1137);
    EXPECT_EQ(SendMessageW(combo, CB_GETCURSEL, 0, 0), -1);
    EXPECT_EQ(SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(L"Auto")), 0);
    EXPECT_EQ(SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(L"1")), 1);
    EXPECT_EQ(combo->items, (std::vector<std::wstring>{L"Auto", L"1"}));
    EXPECT_EQ(SendMessageW(combo, CB_SETCURSEL, 1, 0), 1);
    EXPECT_EQ(SendMessageW(combo, CB_GETCURSEL, 0, 0), 1);
    EXPECT_EQ(SendMessageW(combo, CB_SETCURSEL, 2, 0), -1);
    EXPECT_EQ(SendMessageW(combo, CB_GETCURSEL, 0, 0), -1);
    SendMessageW(combo, CB_SETCURSEL, 0, 0);
    SendMessageW(combo, CB_RESETCONTENT, 0, 0);
    EXPECT_TRUE(combo->items.empty());
    EXPECT_EQ(SendMessageW(combo, CB_GETCURSEL, 0, 0), -1);
}

TEST_F(Panels, SelectingByMessageIsNoCommand) {
    object->procOfSecond = &listener;
    OpenPanel(*node);
    HWND combo = GetDlgItem(PageOf(1), 1137);
    SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(L"Auto"));
    SendMessageW(combo, CB_SETCURSEL, 0, 0);
    EXPECT_EQ(listener.heard.size(), 1u);
}

TEST_F(Panels, ControlIsMadeOnceAndOnItsPage) {
    OpenPanel(*node);
    HWND control = GetDlgItem(PageOf(1), 1015);
    EXPECT_EQ(GetDlgItem(PageOf(1), 1015), control);
    EXPECT_NE(GetDlgItem(PageOf(0), 1015), control);
    EXPECT_EQ(control->id, 1015);
    EXPECT_EQ(control->page, PageOf(1));
    EXPECT_EQ(GetDlgItem(control, 1), nullptr);
    EXPECT_EQ(GetDlgItem(nullptr, 1), nullptr);
}

TEST_F(Panels, EnablingAnswersWhetherItWasDisabled) {
    OpenPanel(*node);
    HWND control = GetDlgItem(PageOf(1), 1125);
    EXPECT_TRUE(IsWindowEnabled(control));
    EXPECT_FALSE(EnableWindow(control, FALSE));
    EXPECT_FALSE(IsWindowEnabled(control));
    EXPECT_TRUE(EnableWindow(control, TRUE));
    EXPECT_TRUE(IsWindowEnabled(control));
}

TEST_F(Panels, SpinnerEnablesItsControlUntilReleased) {
    OpenPanel(*node);
    HWND control = GetDlgItem(PageOf(1), 1095);
    ISpinnerControl* spinner = GetISpinner(control);
    ASSERT_NE(spinner, nullptr);
    EXPECT_EQ(HeldSpinners(), 1);
    EXPECT_EQ(spinner->GetHwnd(), control);
    spinner->Enable(FALSE);
    EXPECT_FALSE(IsWindowEnabled(control));
    EXPECT_FALSE(spinner->IsEnabled());
    spinner->Enable();
    EXPECT_TRUE(IsWindowEnabled(control));
    spinner->Disable();
    EXPECT_FALSE(IsWindowEnabled(control));
    ReleaseISpinner(spinner);
    EXPECT_EQ(HeldSpinners(), 0);
}

TEST_F(Panels, PageIsNoSpinner) {
    OpenPanel(*node);
    EXPECT_EQ(GetISpinner(PageOf(1)), nullptr);
    EXPECT_EQ(GetISpinner(nullptr), nullptr);
}

TEST_F(Panels, TextAndUserDataAreKept) {
    OpenPanel(*node);
    HWND label = GetDlgItem(PageOf(1), 1108);
    EXPECT_TRUE(SetWindowTextW(label, L"Tavrik"));
    EXPECT_EQ(label->text, L"Tavrik");
    EXPECT_EQ(SetWindowLongPtrW(PageOf(1), GWLP_USERDATA, 42), 0);
    EXPECT_EQ(SetWindowLongPtrW(PageOf(1), GWLP_USERDATA, 43), 42);
    EXPECT_EQ(GetWindowLongPtrW(PageOf(1), GWLP_USERDATA), 43);
}

TEST_F(Panels, AddedPageGetsItsParameterAsItOpens) {
    Interface* host = GetCOREInterface();
    HWND page = host->AddRollupPage(nullptr, MAKEINTRESOURCEW(115), KeepCall, L"About", 77);
    EXPECT_EQ(lastCall.window, page);
    EXPECT_EQ(lastCall.message, WM_INITDIALOG);
    EXPECT_EQ(lastCall.lParam, 77);
    EXPECT_EQ(page->dialog, 115);
    EXPECT_EQ(page->text, L"About");
    EXPECT_EQ(page->map, nullptr);
    EXPECT_EQ(page->category, ROLLUP_CAT_STANDARD);
    host->DeleteRollupPage(page);
    EXPECT_TRUE(Pages().empty());
}

TEST_F(Panels, AddedPageGetsItsCommands) {
    HWND page = AddPage(nullptr, MAKEINTRESOURCEW(115), KeepCall, L"About", 0, 0, 4000);
    PressControl(*page, 12);
    EXPECT_EQ(lastCall.message, WM_COMMAND);
    EXPECT_EQ(lastCall.wParam, MAKEWPARAM(12, BN_CLICKED));
    DeletePage(page);
}

TEST_F(Panels, AddedPageCanBeRegisteredAndTakenOut) {
    Interface* host = GetCOREInterface();
    HWND page = host->AddRollupPage(nullptr, MAKEINTRESOURCEW(115), KeepCall, L"About");
    EXPECT_EQ(host->UnRegisterDlgWnd(page), 0);
    host->RegisterDlgWnd(page);
    EXPECT_TRUE(page->registered);
    EXPECT_EQ(host->UnRegisterDlgWnd(page), 1);
    EXPECT_FALSE(page->registered);
    host->DeleteRollupPage(page);
}

TEST_F(Panels, MessageToAPageGetsTheAnswerOfItsProcedure) {
    OpenPanel(*node);
    Table().SetUserDlgProc(1, &listener);
    EXPECT_EQ(SendMessageW(PageOf(1), WM_COMMAND, 0, 0), 5);
    EXPECT_EQ(SendMessageW(PageOf(0), WM_COMMAND, 0, 0), 0);
}

TEST_F(Panels, TitlesStayNumbersWhileTheLibraryKeepsItsStrings) {
    OpenPanel(*node);
    EXPECT_EQ(PageOf(0)->titleString, 23);
    EXPECT_EQ(PageOf(0)->text, L"");
}

TEST_F(Panels, TitlesComeFromTheLibraryWhereItTells) {
    SetLibraryString([](HINSTANCE, int id) { return L"String " + std::to_wstring(id); });
    OpenPanel(*node);
    SetLibraryString(nullptr);
    EXPECT_EQ(PageOf(0)->text, L"String 23");
    EXPECT_EQ(PageOf(1)->text, L"String 4");
}

TEST_F(Panels, RequestsForAFreshLookAreCounted) {
    const int before = InvalidateCount(Table());
    Table().InvalidateUI();
    Table().InvalidateUI(edited::kGravity);
    EXPECT_EQ(InvalidateCount(Table()), before + 2);
}

TEST_F(Panels, PickedNodeIsTaken) {
    EXPECT_TRUE(PickNode(*object->block, edited::kSurface, plain));
    EXPECT_EQ(object->block->GetINode(edited::kSurface), plain);
}

TEST_F(Panels, ValidatorRefusesANode) {
    EXPECT_FALSE(PickNode(*object->block, edited::kGuest, plain));
    EXPECT_EQ(object->block->GetINode(edited::kGuest), nullptr);
    EXPECT_EQ(edited::GuestValidator().asked, 1);
}

TEST_F(Panels, ValidatorLetsANodeIn) {
    edited::GuestValidator().welcome = plain;
    EXPECT_TRUE(PickNode(*object->block, edited::kGuest, plain));
    EXPECT_EQ(object->block->GetINode(edited::kGuest), plain);
}

TEST_F(Panels, ClearingAsksTheValidatorToo) {
    edited::GuestValidator().welcome = plain;
    PickNode(*object->block, edited::kGuest, plain);
    EXPECT_TRUE(PickNode(*object->block, edited::kGuest, nullptr));
    EXPECT_EQ(object->block->GetINode(edited::kGuest), nullptr);
    EXPECT_EQ(edited::GuestValidator().asked, 2);
}

TEST_F(Panels, PickingANodeThatClosesALoopIsRefused) {
    EXPECT_FALSE(PickNode(*object->block, edited::kTarget, node));
    EXPECT_EQ(object->block->GetINode(edited::kTarget), nullptr);
}

TEST_F(Panels, OnlyNodeParametersTakeNodes) {
    EXPECT_FALSE(PickNode(*object->block, edited::kGravity, plain));
    EXPECT_FALSE(PickNode(*object->block, edited::kUnknown, plain));
}

}  // namespace
