// The window: turns keys and mouse into commands for the camera, and frames into pictures.
#include "live_view/live_window_windows.hpp"

#include <windowsx.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "live_view/panel_windows.hpp"

namespace orvane::host {

namespace {

constexpr const wchar_t* className = L"OrvaneLiveView";
constexpr UINT newsMessage = WM_APP;
constexpr UINT dpiChangedMessage = 0x02E0;  // WM_DPICHANGED, which older headers lack

// For 96 dots per inch.
constexpr SIZE firstSize = {1280, 800};
constexpr SIZE leastSize = {860, 700};

// A function of a system library. Null on older systems, which lack it.
template <class Function>
Function systemFunction(const wchar_t* library, const char* name) {
  HMODULE module = GetModuleHandleW(library);
  if (module == nullptr) {
    module = LoadLibraryExW(library, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  }
  if (module == nullptr) {
    return nullptr;
  }
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

int dpiOf(HWND window) {
  static const auto getDpiForWindow =
      systemFunction<UINT(WINAPI*)(HWND)>(L"user32.dll", "GetDpiForWindow");
  if (getDpiForWindow != nullptr) {
    const UINT dpi = getDpiForWindow(window);
    if (dpi != 0) {
      return static_cast<int>(dpi);
    }
  }
  HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
  ReleaseDC(nullptr, screen);
  return dpi;
}

}  // namespace

LiveWindow::LiveWindow(LiveOptions options) {
  WNDCLASSEXW kind = {};
  kind.cbSize = sizeof kind;
  kind.style = CS_DBLCLKS;
  kind.lpfnWndProc = receive;
  kind.hInstance = GetModuleHandleW(nullptr);
  kind.hCursor = LoadCursor(nullptr, IDC_ARROW);
  kind.hIcon = LoadIcon(nullptr, IDI_APPLICATION);
  kind.lpszClassName = className;
  if (RegisterClassExW(&kind) == 0 ||
      CreateWindowExW(0, className, L"Live view", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT,
                      firstSize.cx, firstSize.cy, nullptr, nullptr, kind.hInstance,
                      this) == nullptr) {
    throw std::runtime_error("The window could not be opened.");
  }
  useDarkFrame();
  SetWindowPos(window_, nullptr, 0, 0, scaled(firstSize.cx, dpi_), scaled(firstSize.cy, dpi_),
               SWP_NOMOVE | SWP_NOZORDER);
  ShowWindow(window_, SW_SHOWDEFAULT);
  camera_.emplace(std::move(options), [this] {
    // One message is enough for all pending news.
    if (!hasNews_.exchange(true)) {
      PostMessageW(window_, newsMessage, 0, 0);
    }
  });
}

LiveWindow::~LiveWindow() {
  camera_.reset();
  if (window_ != nullptr) {
    DestroyWindow(window_);
  }
}

void LiveWindow::run() {
  MSG message = {};
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

LRESULT CALLBACK LiveWindow::receive(HWND window, UINT message, WPARAM word, LPARAM number) {
  if (message == WM_NCCREATE) {
    const auto* const creation = reinterpret_cast<const CREATESTRUCTW*>(number);
    auto* const created = static_cast<LiveWindow*>(creation->lpCreateParams);
    created->window_ = window;
    created->dpi_ = dpiOf(window);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(created));
  }
  auto* const self = reinterpret_cast<LiveWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  return self != nullptr ? self->handle(message, word, number)
                         : DefWindowProcW(window, message, word, number);
}

LRESULT LiveWindow::handle(UINT message, WPARAM word, LPARAM number) {
  switch (message) {
    case newsMessage:
      newsCame();
      return 0;
    case WM_ERASEBKGND:
      return 1;  // paint() draws every pixel
    case WM_PAINT:
      paint();
      return 0;
    case WM_SIZE:
      resized();
      return 0;
    case dpiChangedMessage:
      moveToDpi(*reinterpret_cast<const RECT*>(number));
      return 0;
    case WM_GETMINMAXINFO: {
      auto* const limits = reinterpret_cast<MINMAXINFO*>(number);
      limits->ptMinTrackSize = {scaled(leastSize.cx, dpi_), scaled(leastSize.cy, dpi_)};
      return 0;
    }
    case WM_KEYDOWN:
      keyPressed({static_cast<int>(word), GetKeyState(VK_SHIFT) < 0});
      return 0;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
      mousePressed(GET_X_LPARAM(number), GET_Y_LPARAM(number));
      return 0;
    case WM_MOUSEMOVE:
      mouseMoved(GET_X_LPARAM(number), GET_Y_LPARAM(number));
      return 0;
    case WM_LBUTTONUP:
      mouseReleased(GET_X_LPARAM(number), GET_Y_LPARAM(number));
      return 0;
    case WM_CAPTURECHANGED:
      drag_ = Drag::None;
      return 0;
    case WM_MOUSEWHEEL: {
      POINT point = {GET_X_LPARAM(number), GET_Y_LPARAM(number)};
      ScreenToClient(window_, &point);
      wheelTurned(point.x, point.y, GET_WHEEL_DELTA_WPARAM(word) > 0 ? 1 : -1);
      return 0;
    }
    case WM_ENDSESSION:
      if (word != FALSE) {
        camera_.reset();  // the process may end as soon as this returns
      }
      return 0;
    case WM_CLOSE:
      ShowWindow(window_, SW_HIDE);  // the camera may need a moment
      camera_.reset();
      DestroyWindow(window_);
      return 0;
    case WM_DESTROY:
      window_ = nullptr;
      PostQuitMessage(0);
      return 0;
    default:
      return DefWindowProcW(window_, message, word, number);
  }
}

void LiveWindow::resized() {
  RECT client = {};
  GetClientRect(window_, &client);
  canvas_.resize(client.right, client.bottom, dpi_);
  layout_ = layOut(client.right, client.bottom, dpi_);
  redrawPicture();
  redrawPanel();
}

void LiveWindow::moveToDpi(const RECT& suggested) {
  dpi_ = dpiOf(window_);
  SetWindowPos(window_, nullptr, suggested.left, suggested.top, suggested.right - suggested.left,
               suggested.bottom - suggested.top, SWP_NOZORDER | SWP_NOACTIVATE);
  resized();
}

void LiveWindow::paint() {
  PAINTSTRUCT painting = {};
  HDC screen = BeginPaint(window_, &painting);
  if (!canvas_.isEmpty()) {
    if (mustDrawPicture_) {
      drawPicture();
      mustDrawPicture_ = false;
    }
    if (mustDrawPanel_) {
      drawPanel(canvas_, layout_, palette(),
                {*state_, controls_, picture_.measurements(), picture_.isStretched(),
                 picture_.isPixelByPixel()});
      drawStatusLine(canvas_, layout_, palette(), *state_);
      mustDrawPanel_ = false;
    }
    canvas_.show(screen, painting.rcPaint);
  }
  EndPaint(window_, &painting);
}

void LiveWindow::drawPicture() {
  view_ = picture_.draw(canvas_.pixelsOf(layout_.picture), palette().picture);
  if (picture_.hasFrame()) {
    if (hasCrosshair_) {
      drawCrosshair(canvas_, layout_, palette(), view_);
    }
    if (picture_.measurements().focus.star) {
      drawStarMark(canvas_, layout_, palette(), view_, *picture_.measurements().focus.star);
    }
  } else if (overlay_ == Overlay::None) {
    drawEmptyPicture(canvas_, layout_, palette(), *state_);
  }
  if (overlay_ == Overlay::Help) {
    drawHelp(canvas_, layout_, palette());
  } else if (overlay_ == Overlay::Cameras) {
    drawCameraList(canvas_, layout_, palette(), *state_, selected_);
  }
}

void LiveWindow::newsCame() {
  hasNews_ = false;
  if (!camera_) {
    return;
  }
  if (const auto state = camera_->state(); state != state_) {
    state_ = state;
    stateCame(*state);
  }
  LiveFrame frame;
  if (camera_->takeFrame(frame) && frame.opening == state_->opening &&
      state_->phase == LivePhase::Streaming) {
    picture_.setFrame(std::move(frame));
    if (picture_.measure(LivePicture::Clock::now())) {
      redrawPanel();
    }
    redrawPicture();
  }
}

void LiveWindow::stateCame(const LiveState& state) {
  if (state.opening != opening_ || state.settled != settled_) {
    opening_ = state.opening;
    settled_ = state.settled;
    controls_ = {state.settings.exposureUs, state.settings.gain.value_or(0), state.settings.offset};
  }
  if (state.phase != LivePhase::Streaming && picture_.hasFrame()) {
    picture_.clear();
  }
  if (!picture_.hasFrame()) {
    redrawPicture();
  }
  if (state.phase == LivePhase::Idle && !state.cameras.empty() && !hasOfferedList_) {
    hasOfferedList_ = true;
    showOverlay(Overlay::Cameras);
  }
  redrawPanel();
}

void LiveWindow::keyPressed(const KeyPress& press) {
  if (!camera_) {
    return;
  }
  if (overlay_ == Overlay::Cameras && keyInCameraList(press)) {
    return;
  }
  const ViewCommand command = commandOfKey(press);
  if (command != ViewCommand::None) {
    execute(command);
  }
}

// True if the list used the key.
bool LiveWindow::keyInCameraList(const KeyPress& press) {
  const std::size_t count = state_->cameras.size();
  if (press.key >= '1' && press.key <= '9') {
    chooseCamera(static_cast<std::size_t>(press.key - '1'));
  } else if (press.key == keys::enter) {
    chooseCamera(selected_);
  } else if (press.key == keys::up && selected_ > 0) {
    --selected_;
  } else if (press.key == keys::down && selected_ + 1 < count) {
    ++selected_;
  } else if (press.key != keys::up && press.key != keys::down) {
    return false;
  }
  redrawPicture();
  return true;
}

void LiveWindow::execute(ViewCommand command) {
  const oc::CameraInfo* const camera = state_->camera();
  if (camera != nullptr && state_->phase == LivePhase::Streaming) {
    if (const auto controls = controlsAfter(command, controls_, *camera)) {
      sendControls(*controls);
      return;
    }
  }
  switch (command) {
    case ViewCommand::ShowCameras:
      showOverlay(overlay_ == Overlay::Cameras ? Overlay::None : Overlay::Cameras);
      break;
    case ViewCommand::NextCamera:
      if (!state_->cameras.empty()) {
        chooseCamera(state_->chosen ? (*state_->chosen + 1) % state_->cameras.size() : 0);
      }
      break;
    case ViewCommand::NextFormat:
      camera_->send(NextFormatRequest{});
      break;
    case ViewCommand::NextBin:
      camera_->send(NextBinRequest{});
      break;
    case ViewCommand::ToggleRecording:
      camera_->send(ToggleRecordingRequest{});
      break;
    case ViewCommand::Rescan:
      camera_->send(RescanRequest{});
      break;
    case ViewCommand::ToggleStretch:
      picture_.setStretched(!picture_.isStretched());
      break;
    case ViewCommand::ToggleZoom:
      picture_.setPixelByPixel(!picture_.isPixelByPixel());
      break;
    case ViewCommand::ToggleNightMode:
      isNight_ = !isNight_;
      picture_.setTint(isNight_ ? ScreenTint::Red : ScreenTint::Natural);
      break;
    case ViewCommand::ToggleCrosshair:
      hasCrosshair_ = !hasCrosshair_;
      break;
    case ViewCommand::ToggleHelp:
      showOverlay(overlay_ == Overlay::Help ? Overlay::None : Overlay::Help);
      break;
    case ViewCommand::Dismiss:
      showOverlay(Overlay::None);
      break;
    default:
      break;
  }
  redrawPicture();
  redrawPanel();
}

void LiveWindow::mousePressed(int x, int y) {
  if (!camera_) {
    return;
  }
  const std::array<std::pair<Drag, const SliderPlace*>, 3> sliders = {
      {{Drag::Exposure, &layout_.exposure},
       {Drag::Gain, &layout_.gain},
       {Drag::Offset, &layout_.offset}}};
  for (const auto& [drag, place] : sliders) {
    if (place->track.contains(x, y)) {
      SetCapture(window_);
      drag_ = drag;
      mouseMoved(x, y);
      return;
    }
  }
  if (layout_.record.contains(x, y)) {
    execute(ViewCommand::ToggleRecording);
  } else if (layout_.cameraName.contains(x, y) || layout_.cameraFormat.contains(x, y)) {
    execute(ViewCommand::ShowCameras);
  } else if (layout_.status.contains(x, y) && x > layout_.panel.left) {
    execute(ViewCommand::ToggleHelp);
  } else if (overlay_ == Overlay::Cameras) {
    const int row = cameraListPlace(layout_, state_->cameras.size(), dpi_).rowAt(x, y);
    if (row >= 0) {
      chooseCamera(static_cast<std::size_t>(row));
    }
  } else if (overlay_ == Overlay::Help) {
    showOverlay(Overlay::None);
  } else if (layout_.picture.contains(x, y)) {
    SetCapture(window_);
    drag_ = Drag::Picture;
    dragFrom_ = {x, y};
    hasDragged_ = false;
  }
}

void LiveWindow::mouseMoved(int x, int y) {
  switch (drag_) {
    case Drag::Exposure:
      moveSlider(SliderKind::Exposure, layout_.exposure.track, x);
      break;
    case Drag::Gain:
      moveSlider(SliderKind::Gain, layout_.gain.track, x);
      break;
    case Drag::Offset:
      moveSlider(SliderKind::Offset, layout_.offset.track, x);
      break;
    case Drag::Picture:
      if (hasDragged_ || std::abs(x - dragFrom_.x) + std::abs(y - dragFrom_.y) > scaled(4, dpi_)) {
        hasDragged_ = true;
        picture_.move(x - dragFrom_.x, y - dragFrom_.y);
        dragFrom_ = {x, y};
        redrawPicture();
      }
      break;
    case Drag::None:
      break;
  }
}

void LiveWindow::mouseReleased(int x, int y) {
  if (drag_ == Drag::Picture && !hasDragged_ && picture_.hasFrame()) {
    picture_.followStarAt(view_.frameX(x - layout_.picture.left),
                          view_.frameY(y - layout_.picture.top));
  }
  if (drag_ != Drag::None) {
    ReleaseCapture();
  }
}

void LiveWindow::wheelTurned(int x, int y, int clicks) {
  const auto over = [&](const SliderPlace& place) {
    return place.track.contains(x, y) || place.caption.contains(x, y);
  };
  if (over(layout_.exposure)) {
    execute(clicks > 0 ? ViewCommand::LongerExposure : ViewCommand::ShorterExposure);
  } else if (over(layout_.gain)) {
    execute(clicks > 0 ? ViewCommand::MoreGain : ViewCommand::LessGain);
  } else if (over(layout_.offset)) {
    execute(clicks > 0 ? ViewCommand::MoreOffset : ViewCommand::LessOffset);
  }
}

void LiveWindow::moveSlider(SliderKind slider, const PixelRect& track, int x) {
  const oc::CameraInfo* const camera = state_->camera();
  if (camera != nullptr && state_->phase == LivePhase::Streaming) {
    sendControls(controlsAfter(slider, placeOnTrack(track, x), controls_, *camera));
  }
}

void LiveWindow::sendControls(const ControlsRequest& controls) {
  controls_ = controls;
  camera_->send(controls);
  redrawPanel();
}

void LiveWindow::showOverlay(Overlay overlay) {
  overlay_ = overlay;
  selected_ = state_->chosen.value_or(0);
  redrawPicture();
}

void LiveWindow::chooseCamera(std::size_t position) {
  if (position < state_->cameras.size()) {
    camera_->send(ChooseRequest{position});
    showOverlay(Overlay::None);
  }
}

// Makes the title bar dark like the rest, if the system can.
void LiveWindow::useDarkFrame() {
  constexpr DWORD useImmersiveDarkMode = 20;
  using SetAttribute = HRESULT(WINAPI*)(HWND, DWORD, LPCVOID, DWORD);
  if (const auto setAttribute =
          systemFunction<SetAttribute>(L"dwmapi.dll", "DwmSetWindowAttribute")) {
    const BOOL yes = TRUE;
    setAttribute(window_, useImmersiveDarkMode, &yes, sizeof yes);
  }
}

void LiveWindow::redrawPicture() {
  mustDrawPicture_ = true;
  const RECT area = rectOf(layout_.picture);
  InvalidateRect(window_, &area, FALSE);
}

void LiveWindow::redrawPanel() {
  mustDrawPanel_ = true;
  const RECT panel = rectOf(layout_.panel);
  const RECT status = rectOf(layout_.status);
  InvalidateRect(window_, &panel, FALSE);
  InvalidateRect(window_, &status, FALSE);
}

}  // namespace orvane::host
