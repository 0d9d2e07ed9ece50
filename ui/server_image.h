#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "ui/canvas.h"
#include "ui/connection.h"

namespace ui {

class BackBuffer;

/// A picture that stays with the X server, so that drawing it again sends no pixels: at 3840 x 2160
/// those would be 33 MB a frame. Window thread only; the connection outlives it.
class ServerImage {
 public:
  explicit ServerImage(Connection& connection);
  ~ServerImage();
  ServerImage(const ServerImage&) = delete;
  ServerImage& operator=(const ServerImage&) = delete;

  /// Sends `width` x `height` pixels, as `Canvas::putPixels` takes them, instead of what was there.
  /// When the server has no room, or fewer pixels are given, there is no picture afterwards.
  void set(std::span<const std::uint32_t> pixels, int width, int height);
  /// Sends `pixels` for a part of the picture alone, as `Canvas::putPixels` takes them; nothing
  /// without a picture.
  void replace(const Rect& part, std::span<const std::uint32_t> pixels);
  /// Has a picture of this size, in which nothing is certain until it is replaced. False when the
  /// server has no room: there is no picture then.
  bool reserve(int width, int height);
  /// Has the picture of `other` from now on, which has none.
  void takeFrom(ServerImage& other);
  /// Gives the server its memory back.
  void clear();

  /// 0 without a picture.
  int width() const;
  int height() const;

  /// Draws the picture with its upper left corner at (x, y); nothing without one.
  void draw(Canvas& canvas, int x, int y) const;

 private:
  void put(const Rect& part, std::span<const std::uint32_t> pixels);

  Connection& connection_;
  std::unique_ptr<BackBuffer> buffer_;
};

}  // namespace ui
