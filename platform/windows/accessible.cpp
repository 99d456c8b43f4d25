// The panels' items for screen readers: an IAccessible whose simple children are the items. Windows-only
// because the interface is. The library behind it is looked up when the first reader asks.
#include "platform/windows/desktop_windows.h"
#include "platform/windows/main_window.h"

#include <oleacc.h>

namespace tonex {

namespace {

/// The entries of oleacc.dll that are used.
struct AccessibilityLibrary {
    LRESULT(WINAPI* LresultFromObject)(REFIID, WPARAM, LPUNKNOWN);
    HRESULT(WINAPI* CreateStdAccessibleObject)(HWND, LONG, REFIID, void**);
};

const AccessibilityLibrary& Library() {
    static const AccessibilityLibrary library = [] {
        HMODULE module = SystemLibrary(L"oleacc.dll");
        AccessibilityLibrary found{};
        found.LresultFromObject =
            LibraryFunction<decltype(found.LresultFromObject)>(module, "LresultFromObject");
        found.CreateStdAccessibleObject =
            LibraryFunction<decltype(found.CreateStdAccessibleObject)>(module, "CreateStdAccessibleObject");
        return found;
    }();
    return library;
}

// The interface identifiers, written out so that no import library is needed for them.
constexpr GUID kUnknownId = {0x00000000, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr GUID kDispatchId = {0x00020400, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr GUID kAccessibleId = {0x618736E0, 0x3C3D, 0x11CF, {0x81, 0x0C, 0, 0xAA, 0, 0x38, 0x9B, 0x71}};

BSTR AllocText(const std::wstring& text) {
    using Allocate = BSTR(WINAPI*)(const OLECHAR*, UINT);
    static const auto allocate =
        LibraryFunction<Allocate>(SystemLibrary(L"oleaut32.dll"), "SysAllocStringLen");
    return allocate ? allocate(text.data(), static_cast<UINT>(text.size())) : nullptr;
}

/// The accessible object of one panel window. It outlives the window if a reader holds it, and then fails.
class PanelAccessible final : public IAccessible {
  public:
    explicit PanelAccessible(HWND window) : window_(window) {}
    virtual ~PanelAccessible() = default;

    // IUnknown
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (!object) return E_POINTER;
        *object = nullptr;
        if (!IsEqualGUID(id, kUnknownId) && !IsEqualGUID(id, kDispatchId) && !IsEqualGUID(id, kAccessibleId))
            return E_NOINTERFACE;
        *object = static_cast<IAccessible*>(this);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override {
        return static_cast<ULONG>(InterlockedIncrement(&references_));
    }
    ULONG STDMETHODCALLTYPE Release() override {
        const LONG left = InterlockedDecrement(&references_);
        if (left == 0) delete this;
        return static_cast<ULONG>(left);
    }

    // IDispatch: the interface is called directly.
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        if (count) *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return E_NOTIMPL;
    }

    // IAccessible
    HRESULT STDMETHODCALLTYPE get_accParent(IDispatch** parent) override {
        if (!parent) return E_POINTER;
        *parent = nullptr;
        if (!Library().CreateStdAccessibleObject) return S_FALSE;
        return Library().CreateStdAccessibleObject(window_, OBJID_WINDOW, kDispatchId,
                                                   reinterpret_cast<void**>(parent));
    }
    HRESULT STDMETHODCALLTYPE get_accChildCount(LONG* count) override {
        if (!count || !Owner()) return E_INVALIDARG;
        *count = Owner()->kind->count(*Owner());
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE get_accChild(VARIANT, IDispatch** child) override {
        if (child) *child = nullptr;
        return S_FALSE; // the children are simple elements of this object
    }
    HRESULT STDMETHODCALLTYPE get_accName(VARIANT child, BSTR* name) override {
        int item = 0;
        if (!name || !Resolve(child, item)) return E_INVALIDARG;
        *name = AllocText(item < 0 ? Owner()->kind->title : Owner()->kind->item_name(*Owner(), item));
        return *name ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE get_accValue(VARIANT, BSTR* value) override { return Nothing(value); }
    HRESULT STDMETHODCALLTYPE get_accDescription(VARIANT, BSTR* text) override { return Nothing(text); }
    HRESULT STDMETHODCALLTYPE get_accRole(VARIANT child, VARIANT* role) override {
        int item = 0;
        if (!role || !Resolve(child, item)) return E_INVALIDARG;
        role->vt = VT_I4;
        role->lVal = item < 0 ? ROLE_SYSTEM_GROUPING : Owner()->kind->item_role;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE get_accState(VARIANT child, VARIANT* state) override {
        int item = 0;
        if (!state || !Resolve(child, item)) return E_INVALIDARG;
        state->vt = VT_I4;
        state->lVal = STATE_SYSTEM_FOCUSABLE;
        if (!TakesInput(*Owner()->main)) state->lVal |= STATE_SYSTEM_UNAVAILABLE;
        if (item < 0) return S_OK;
        state->lVal |= STATE_SYSTEM_SELECTABLE;
        if (Owner()->kind->item_chosen(*Owner(), item)) state->lVal |= STATE_SYSTEM_SELECTED;
        if (Owner()->focused && Owner()->kind->cursor(*Owner()) == item) state->lVal |= STATE_SYSTEM_FOCUSED;
        if (Owner()->pressed_item == item) state->lVal |= STATE_SYSTEM_PRESSED;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE get_accHelp(VARIANT, BSTR* help) override { return Nothing(help); }
    HRESULT STDMETHODCALLTYPE get_accHelpTopic(BSTR* file, VARIANT, LONG* topic) override {
        if (topic) *topic = 0;
        return Nothing(file);
    }
    HRESULT STDMETHODCALLTYPE get_accKeyboardShortcut(VARIANT, BSTR* text) override { return Nothing(text); }
    HRESULT STDMETHODCALLTYPE get_accFocus(VARIANT* child) override {
        if (!child || !Owner()) return E_INVALIDARG;
        child->vt = VT_EMPTY;
        if (!Owner()->focused) return S_FALSE;
        child->vt = VT_I4;
        child->lVal = Owner()->kind->cursor(*Owner()) + 1; // no item = the panel itself, 0
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE get_accSelection(VARIANT* children) override {
        if (children) children->vt = VT_EMPTY;
        return S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE get_accDefaultAction(VARIANT child, BSTR* action) override {
        int item = 0;
        if (!action || !Resolve(child, item)) return E_INVALIDARG;
        if (item < 0) return Nothing(action);
        *action = AllocText(L"Press");
        return *action ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE accSelect(LONG flags, VARIANT child) override {
        int item = 0;
        if (!Resolve(child, item) || item < 0) return E_INVALIDARG;
        if (!TakesInput(*Owner()->main)) return S_FALSE;
        if ((flags & SELFLAG_TAKEFOCUS) == 0) return S_OK;
        Owner()->kind->take_cursor(*Owner(), item);
        ShowDifferences(*Owner()->main);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE accLocation(LONG* left, LONG* top, LONG* width, LONG* height,
                                          VARIANT child) override {
        int item = 0;
        if (!left || !top || !width || !height || !Resolve(child, item)) return E_INVALIDARG;
        RECT area;
        if (item < 0)
            GetClientRect(window_, &area);
        else
            area = Owner()->kind->item_area(*Owner(), item);
        POINT corner = {area.left, area.top};
        ClientToScreen(window_, &corner);
        *left = corner.x;
        *top = corner.y;
        *width = area.right - area.left;
        *height = area.bottom - area.top;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE accNavigate(LONG direction, VARIANT start, VARIANT* end) override {
        int item = 0;
        if (!end || !Resolve(start, item)) return E_INVALIDARG;
        end->vt = VT_EMPTY;
        const int count = Owner()->kind->count(*Owner());
        int to = -1;
        if (item < 0 && direction == NAVDIR_FIRSTCHILD) to = 0;
        if (item < 0 && direction == NAVDIR_LASTCHILD) to = count - 1;
        if (item >= 0 && (direction == NAVDIR_NEXT || direction == NAVDIR_RIGHT)) to = item + 1;
        if (item >= 0 && (direction == NAVDIR_PREVIOUS || direction == NAVDIR_LEFT)) to = item - 1;
        if (to < 0 || to >= count) return S_FALSE;
        end->vt = VT_I4;
        end->lVal = to + 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE accHitTest(LONG x, LONG y, VARIANT* child) override {
        if (!child || !Owner()) return E_INVALIDARG;
        POINT point = {x, y};
        ScreenToClient(window_, &point);
        RECT client;
        GetClientRect(window_, &client);
        child->vt = VT_EMPTY;
        if (!PtInRect(&client, point)) return S_FALSE;
        child->vt = VT_I4;
        child->lVal = Owner()->kind->item_at(*Owner(), point) + 1; // no item = the panel itself, 0
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE accDoDefaultAction(VARIANT child) override {
        int item = 0;
        if (!Resolve(child, item) || item < 0) return E_INVALIDARG;
        // What mouse and keyboard can not do now, a tool can not do either: a command would run inside
        // another.
        if (!TakesInput(*Owner()->main)) return S_FALSE;
        Owner()->kind->press(*Owner(), item);
        ShowDifferences(*Owner()->main);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE put_accName(VARIANT, BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_accValue(VARIANT, BSTR) override { return E_NOTIMPL; }

  private:
    Panel* Owner() const {
        return IsWindow(window_) ? reinterpret_cast<Panel*>(GetWindowLongPtrW(window_, GWLP_USERDATA))
                                 : nullptr;
    }
    /// The item a child identifier means: -1 for the panel itself. False for one that is not there.
    bool Resolve(const VARIANT& child, int& item) const {
        Panel* panel = Owner();
        if (!panel || child.vt != VT_I4 || child.lVal < 0) return false;
        item = static_cast<int>(child.lVal) - 1;
        return item < panel->kind->count(*panel);
    }
    static HRESULT Nothing(BSTR* text) {
        if (text) *text = nullptr;
        return S_FALSE;
    }

    HWND window_;
    LONG references_ = 1;
};

} // namespace

LRESULT AnswerGetObject(Panel& panel, WPARAM wparam, LPARAM lparam) {
    // The high half of the parameter is not defined in 64-bit senders; the identifier is the low 32 bits.
    if (static_cast<LONG>(lparam) != OBJID_CLIENT || !Library().LresultFromObject)
        return DefWindowProcW(panel.window, WM_GETOBJECT, wparam, lparam);
    EnterApartment(); // a screen reader may ask while the window starts
    auto* object = new PanelAccessible(panel.window);
    const LRESULT result = Library().LresultFromObject(kAccessibleId, wparam, object);
    object->Release();
    return result;
}

} // namespace tonex
