#pragma once

#include <string>

#include "ui/x11.h"

namespace ui {

/// Finds out what keys type, with Xlib's own knowledge of key symbols, and composes characters of
/// dead keys and sequences. It asks no input method of another program, which might not answer:
/// Xlib does it all. Without a locale the sequences are those of Latin-1.
class TypedKeys {
 public:
  explicit TypedKeys(Display* display) : display_(display) {}
  /// Before the display is closed.
  ~TypedKeys() { detach(); }
  TypedKeys(const TypedKeys&) = delete;
  TypedKeys& operator=(const TypedKeys&) = delete;

  /// Keys of `window` are looked at from now on. Reads the user's file of sequences, if any.
  void attach(::Window window);
  /// Before the window is destroyed.
  void detach();

  /// What a key press types, as UTF-8. Empty while a character is composed of it and others; that
  /// comes as an event of its own. `text` is what XLookupString says, and all there is where Xlib's
  /// files of locales are missing.
  std::string typedBy(const XKeyEvent& event, const std::string& text) const;

 private:
  std::string lookUp(XKeyEvent& event) const;

  Display* display_;
  XIM method_ = nullptr;
  XIC context_ = nullptr;
};

}  // namespace ui
