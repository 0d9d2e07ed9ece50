#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace test {

/// A second client of the X server that DISPLAY names: it moves the pointer and presses keys as a
/// user would, plays the window manager, and looks at what the window under test shows. Window ids
/// are X ids. Each call returns once the server has carried it out.
class OtherClient {
 public:
  OtherClient();
  ~OtherClient();
  OtherClient(const OtherClient&) = delete;
  OtherClient& operator=(const OtherClient&) = delete;

  /// To a place on the screen; without a window manager the window under test lies at its top left
  /// corner.
  void movePointer(int x, int y);
  void pressButton(unsigned button);
  void releaseButton(unsigned button);
  /// Keys go to the window that has the focus.
  void focus(unsigned long window);
  void pressKey(unsigned long keysym);
  void releaseKey(unsigned long keysym);
  /// Presses and releases a key of another layout: one that the keyboard does not use is given this
  /// symbol for a moment.
  void typeForeignKey(unsigned long keysym);
  /// Claims to be the input method of that name, and never answers anybody who believes it.
  void claimInputMethod(const std::string& name);

  /// The window on the screen whose class is `className`, framed or not; waits for it, and throws
  /// std::runtime_error when it does not come.
  unsigned long shownWindow(const std::string& className);
  /// Becomes a window manager that never shows a window, as one that hangs.
  void holdBackWindows();
  /// Gets the client messages that are sent to the root for the window manager, beside it.
  void listenToRoot();
  /// Gets instead the client messages that are sent to everybody who watches the root's properties:
  /// those of start-up notification.
  void listenToStarts();
  struct Message {
    unsigned long window = 0;
    std::string type;
    int format = 0;
    std::array<long, 5> words = {};  // of format 32
    std::string bytes = {};          // all 20, of format 8
  };
  /// The next message to the root; nothing when there is none yet. For `listenToRoot`,
  /// `listenToStarts` and `holdBackWindows`.
  std::optional<Message> messageToRoot();
  /// Ends `listenToRoot`, `listenToStarts` and `holdBackWindows`.
  void ignoreRoot();
  unsigned long root() const;
  /// Makes and shows a window of this client's.
  unsigned long showWindow();
  /// Asks the window manager to.
  void minimize(unsigned long window);
  /// Whether the window and all that it lies in is shown.
  bool isViewable(unsigned long window);

  void moveWindow(unsigned long window, int x, int y);
  void resizeWindow(unsigned long window, int width, int height);
  /// Tells the window of a size that it does not have.
  void sendConfigure(unsigned long window, int width, int height);
  /// Tells the window that it lost all that it showed, as one of a series of which `count` follow.
  void sendExpose(unsigned long window, int count);
  /// A WM_PROTOCOLS message whose first word is the atom of `protocol`, as a close button sends it.
  void sendProtocol(unsigned long window, const std::string& protocol);

  /// Asks the owner of `selection` for it as `target`, to be stored on the property ANSWER of a
  /// window made for this. With `name` empty no property is named, as clients from before ICCCM do
  /// it.
  void requestSelection(const std::string& selection, const std::string& target,
                        const std::string& name = "ANSWER");
  /// Sends `owner` a request for a selection that it need not own.
  void sendSelectionRequest(unsigned long owner, const std::string& selection,
                            const std::string& target);
  /// Destroys the window that the last request was made for.
  void destroyRequestor();
  /// The answer to the last request; `property` is empty for a refusal.
  struct Answer {
    std::string selection;
    std::string target;
    std::string property;
    bool timeIsThatOfTheRequest = false;
  };
  /// Nothing while there is no answer yet.
  std::optional<Answer> answer();
  unsigned long requestor() const;
  /// Makes a window of this client the owner of `selection`.
  void takeSelection(const std::string& selection);
  unsigned long selectionOwner(const std::string& selection);

  void destroyWindow(unsigned long window);
  /// The bytes of a property of format 8; empty when there is none of that type.
  std::string textProperty(unsigned long window, const std::string& name, const std::string& type);
  /// The items of a property of format 32 of any type.
  std::vector<unsigned long> longProperty(unsigned long window, const std::string& name);
  std::string atomName(unsigned long atom);
  /// Width and height of a window; zeros when it does not exist.
  std::pair<int, int> sizeOf(unsigned long window);
  /// The events that any client asked of the window.
  long eventMask(unsigned long window);
  /// Which part of its old picture the window keeps when its size changes; X's number.
  int bitGravity(unsigned long window);
  /// Draws over all of the window with that raw pixel, of which the window is told nothing.
  void scribbleOver(unsigned long window, unsigned long pixel);
  /// The raw pixel of the window that is on the screen now.
  unsigned long screenPixel(unsigned long window, int x, int y);
  /// Those of `w` x `h` pixels from (x, y) on, which are on the screen.
  std::vector<unsigned long> screenPixels(unsigned long window, int x, int y, int w, int h);

 private:
  struct Native;
  std::unique_ptr<Native> native_;
};

}  // namespace test
