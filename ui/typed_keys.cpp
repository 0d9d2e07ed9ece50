#include "ui/typed_keys.h"

#include <algorithm>
#include <cstddef>

#include "base/utf8.h"

namespace ui {

namespace {
/// Sequences of the user's own may be longer.
constexpr std::size_t kUsualLength = 32;

std::string utf8OfLatin1(const std::string& text) {
  std::string result;
  for (const char c : text) result += base::encoded(static_cast<unsigned char>(c));
  return result;
}
}  // namespace

void TypedKeys::attach(::Window window) {
  // Of several modifiers the first counts: that of the environment, which may name a program that
  // does not answer, comes after it.
  if (!XSetLocaleModifiers("@im=none")) return;
  method_ = XOpenIM(display_, nullptr, nullptr, nullptr);
  if (!method_) return;
  context_ = XCreateIC(method_, XNInputStyle, XIMPreeditNothing | XIMStatusNothing, XNClientWindow,
                       window, nullptr);
  if (context_) XSetICFocus(context_);
}

void TypedKeys::detach() {
  if (context_) XDestroyIC(context_);
  if (method_) XCloseIM(method_);
  context_ = nullptr;
  method_ = nullptr;
}

std::string TypedKeys::typedBy(const XKeyEvent& event, const std::string& text) const {
  if (!context_) return utf8OfLatin1(text);
  XEvent looked{};
  looked.xkey = event;  // Xlib writes into it
  if (XFilterEvent(&looked, None)) return {};
  return lookUp(looked.xkey);
}

std::string TypedKeys::lookUp(XKeyEvent& event) const {
  std::string text(kUsualLength, '\0');
  const auto fill = [&](Status* status) {
    return Xutf8LookupString(context_, &event, text.data(), static_cast<int>(text.size()), nullptr,
                             status);
  };
  Status status = XLookupNone;
  int length = fill(&status);
  if (status == XBufferOverflow) {
    text.resize(static_cast<std::size_t>(std::max(0, length)));
    length = fill(&status);
  }
  const bool typed = status == XLookupChars || status == XLookupBoth;
  text.resize(typed ? static_cast<std::size_t>(std::max(0, length)) : 0);
  return text;
}

}  // namespace ui
