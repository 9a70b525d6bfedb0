// The window: turns keys and mouse into commands for the camera, and frames into pictures.
#pragma once

#include <windows.h>

#include <atomic>
#include <memory>
#include <optional>

#include "live_view/gdi_canvas_windows.hpp"
#include "live_view/key_commands.hpp"
#include "live_view/live_camera.hpp"
#include "live_view/live_controls.hpp"
#include "live_view/live_picture.hpp"
#include "live_view/palette.hpp"
#include "live_view/window_layout.hpp"

namespace orvane::host {

class LiveWindow {
 public:
  /// Opens the window and starts the camera's thread. Throws std::runtime_error.
  explicit LiveWindow(LiveOptions options);
  ~LiveWindow();
  LiveWindow(const LiveWindow&) = delete;
  LiveWindow& operator=(const LiveWindow&) = delete;

  /// Handles messages until the user closes the window.
  void run();

 private:
  enum class Overlay { None, Help, Cameras };
  enum class Drag { None, Exposure, Gain, Offset, Picture };

  static LRESULT CALLBACK receive(HWND window, UINT message, WPARAM word, LPARAM number);
  LRESULT handle(UINT message, WPARAM word, LPARAM number);

  void resized();
  void moveToDpi(const RECT& suggested);
  void paint();
  void drawPicture();
  void newsCame();
  void stateCame(const LiveState& state);

  void keyPressed(const KeyPress& press);
  bool keyInCameraList(const KeyPress& press);
  void execute(ViewCommand command);
  void mousePressed(int x, int y);
  void mouseMoved(int x, int y);
  void mouseReleased(int x, int y);
  void wheelTurned(int x, int y, int clicks);
  void moveSlider(SliderKind slider, const PixelRect& track, int x);

  void sendControls(const ControlsRequest& controls);
  void showOverlay(Overlay overlay);
  void chooseCamera(std::size_t position);
  void useDarkFrame();

  void redrawPicture();
  void redrawPanel();
  const Palette& palette() const { return isNight_ ? nightPalette : darkPalette; }

  HWND window_ = nullptr;
  int dpi_ = 96;
  GdiCanvas canvas_;
  WindowLayout layout_;
  LivePicture picture_;
  std::shared_ptr<const LiveState> state_ = std::make_shared<LiveState>();
  ControlsRequest controls_;
  std::uint64_t opening_ = 0;
  std::uint64_t settled_ = 0;
  Overlay overlay_ = Overlay::None;
  std::size_t selected_ = 0;  // in the list of cameras
  bool hasOfferedList_ = false;
  Drag drag_ = Drag::None;
  POINT dragFrom_ = {};
  bool hasDragged_ = false;
  PictureView view_;
  bool isNight_ = false;
  bool hasCrosshair_ = false;
  bool mustDrawPicture_ = true;
  bool mustDrawPanel_ = true;
  std::atomic<bool> hasNews_ = false;
  std::optional<LiveCamera> camera_;  // last: its thread uses the others
};

}  // namespace orvane::host
