// Reads the windows of hitwick.exe from outside, through their handles. For every line of standard
// input it writes one line: the visible windows as JSON, each with its children. What costs many
// messages (names, lines of lists) is asked of the windows that bear the line as title.
#include <windows.h>

// Needs the types of the one above.
#include <oleacc.h>

#include <cwctype>
#include <iostream>
#include <string>
#include <vector>

namespace {

constexpr wchar_t kProgram[] = L"hitwick.exe";
constexpr UINT kAnswerMilliseconds = 20000;

std::string Utf8(const std::wstring& text) {
  const int size = static_cast<int>(text.size());
  std::string bytes(text.size() * 4, '\0');
  bytes.resize(static_cast<std::size_t>(
      WideCharToMultiByte(CP_UTF8, 0, text.data(), size, bytes.data(),
                          static_cast<int>(bytes.size()), nullptr, nullptr)));
  return bytes;
}

std::string Quoted(const std::wstring& text) {
  std::string quoted = "\"";
  for (const char c : Utf8(text)) {
    constexpr char kDigits[] = "0123456789abcdef";
    const auto byte = static_cast<unsigned char>(c);
    if (byte < ' ') {
      quoted.append("\\u00").append({kDigits[byte / 16], kDigits[byte % 16]});
    } else {
      if (c == '"' || c == '\\') quoted += '\\';
      quoted += c;
    }
  }
  return quoted + '"';
}

std::string Field(const char* name, const std::string& value) {
  return '"' + std::string(name) + "\":" + value + ',';
}

std::string Field(const char* name, bool value) {
  return Field(name, std::string(value ? "true" : "false"));
}

// What a window answers; 0 when it does not.
LRESULT Ask(HWND window, UINT message, WPARAM first = 0, LPARAM second = 0) {
  DWORD_PTR answer = 0;
  SendMessageTimeoutW(window, message, first, second, SMTO_ABORTIFHUNG, kAnswerMilliseconds,
                      &answer);
  return static_cast<LRESULT>(answer);
}

std::wstring ClassOf(HWND window) {
  wchar_t name[256] = L"";
  GetClassNameW(window, name, 256);
  return name;
}

std::wstring TextOf(HWND window) {
  std::wstring text(static_cast<std::size_t>(Ask(window, WM_GETTEXTLENGTH)) + 1, L'\0');
  const LRESULT length =
      Ask(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
  text.resize(static_cast<std::size_t>(length));
  return text;
}

// The messages that a list and a drop-down list answer alike.
struct ListMessages {
  UINT count, length, text, selected;
};
constexpr ListMessages kListBox = {LB_GETCOUNT, LB_GETTEXTLEN, LB_GETTEXT, LB_GETCURSEL};
constexpr ListMessages kComboBox = {CB_GETCOUNT, CB_GETLBTEXTLEN, CB_GETLBTEXT, CB_GETCURSEL};

std::string ListFields(HWND window, const ListMessages& messages) {
  std::string items;
  const LRESULT count = Ask(window, messages.count);
  for (LRESULT i = 0; i < count; ++i) {
    const auto index = static_cast<WPARAM>(i);
    std::wstring text(static_cast<std::size_t>(Ask(window, messages.length, index)) + 1, L'\0');
    Ask(window, messages.text, index, reinterpret_cast<LPARAM>(text.data()));
    text.pop_back();
    items += (items.empty() ? "" : ",") + Quoted(text);
  }
  return Field("items", "[" + items + "]") +
         Field("selected", std::to_string(static_cast<int>(Ask(window, messages.selected))));
}

std::wstring Taken(BSTR text) {
  const std::wstring copy = text == nullptr ? L"" : std::wstring(text, SysStringLen(text));
  SysFreeString(text);
  return copy;
}

// What a screen reader is told.
std::string AccessibleFields(HWND window) {
  IAccessible* object = nullptr;
  if (FAILED(AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT),
                                        __uuidof(IAccessible),
                                        reinterpret_cast<void**>(&object)))) {
    return {};
  }
  VARIANT self;
  self.vt = VT_I4;
  self.lVal = CHILDID_SELF;
  BSTR name = nullptr;
  object->get_accName(self, &name);
  object->Release();
  return Field("name", Quoted(Taken(name)));
}

// Of a control that takes input.
std::string InputFields(HWND window, const std::wstring& name) {
  if (name == L"Edit") return AccessibleFields(window);
  if (name == L"Button") {
    return AccessibleFields(window) + Field("checked", Ask(window, BM_GETCHECK) == BST_CHECKED);
  }
  if (name == L"ComboBox") return AccessibleFields(window) + ListFields(window, kComboBox);
  if (name != L"ListBox") return {};
  return AccessibleFields(window) + ListFields(window, kListBox) +
         Field("first", std::to_string(Ask(window, LB_GETTOPINDEX))) +
         Field("line", std::to_string(Ask(window, LB_GETITEMHEIGHT)));
}

HWND FocusOf(HWND window) {
  GUITHREADINFO info = {};
  info.cbSize = sizeof info;
  GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info);
  return info.hwndFocus;
}

std::string Rectangle(HWND window) {
  RECT place = {};
  GetWindowRect(window, &place);
  return "[" + std::to_string(place.left) + "," + std::to_string(place.top) + "," +
         std::to_string(place.right) + "," + std::to_string(place.bottom) + "]";
}

std::string Description(HWND window, bool whole) {
  const std::wstring name = ClassOf(window);
  std::string fields =
      Field("handle", std::to_string(reinterpret_cast<UINT_PTR>(window))) +
      Field("class", Quoted(name)) + Field("text", Quoted(TextOf(window))) +
      Field("style", std::to_string(GetWindowLongW(window, GWL_STYLE))) +
      Field("enabled", IsWindowEnabled(window) != 0) + Field("focus", FocusOf(window) == window) +
      (whole ? InputFields(window, name) : std::string()) + Field("box", Rectangle(window));
  std::string children;
  for (HWND child = GetWindow(window, GW_CHILD); child != nullptr;
       child = GetWindow(child, GW_HWNDNEXT)) {
    if (IsWindowVisible(child) == 0) continue;
    children += (children.empty() ? "" : ",") + Description(child, whole);
  }
  return "{" + fields + "\"children\":[" + children + "]}";
}

bool IsOfProgram(HWND window) {
  DWORD id = 0;
  GetWindowThreadProcessId(window, &id);
  const HANDLE process = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, id);
  wchar_t path[MAX_PATH] = L"";
  DWORD size = MAX_PATH;
  const bool known = QueryFullProcessImageNameW(process, 0, path, &size) != 0;
  CloseHandle(process);
  const std::wstring file = path;
  return known && lstrcmpiW(file.substr(file.find_last_of(L'\\') + 1).c_str(), kProgram) == 0;
}

BOOL CALLBACK Collect(HWND window, LPARAM windows) {
  if (IsWindowVisible(window) != 0 && IsOfProgram(window)) {
    reinterpret_cast<std::vector<HWND>*>(windows)->push_back(window);
  }
  return TRUE;
}

std::string AllWindows(const std::string& title) {
  std::vector<HWND> windows;
  EnumWindows(Collect, reinterpret_cast<LPARAM>(&windows));
  std::string list;
  for (const HWND window : windows) {
    list += (list.empty() ? "" : ",") + Description(window, Utf8(TextOf(window)) == title);
  }
  return "[" + list + "]";
}

}  // namespace

int main() {
  SetProcessDPIAware();  // rectangles are those of the screen
  if (FAILED(CoInitialize(nullptr))) return 1;
  for (std::string line; std::getline(std::cin, line);) {
    std::cout << AllWindows(line) << std::endl;
  }
  CoUninitialize();
  return 0;
}
