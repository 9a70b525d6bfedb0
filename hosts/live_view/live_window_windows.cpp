// The window: turns keys and mouse into commands for the camera, and frames into pictures.
#include "live_view/live_window_windows.hpp"

#include <windows.h>
#include <windowsx.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "live_view/folder_choice_windows.hpp"
#include "live_view/gdi_canvas_windows.hpp"
#include "live_view/key_commands.hpp"
#include "live_view/live_camera.hpp"
#include "live_view/live_controls.hpp"
#include "live_view/live_picture.hpp"
#include "live_view/live_texts.hpp"
#include "live_view/panel_windows.hpp"
#include "live_view/region_choice.hpp"
#include "live_view/window_layout.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr const wchar_t* className = L"OrvaneLiveView";
constexpr UINT newsMessage = WM_APP;
constexpr UINT dpiChangedMessage = 0x02E0;  // WM_DPICHANGED, which older headers lack

// For 96 dots per inch.
constexpr SIZE firstSize = {1280, 800};
constexpr SIZE leastSize = {860, 700};

constexpr const wchar_t* sdkQuestion = L"The folder with the camera makers' SDK libraries";
constexpr const wchar_t* recordingsQuestion = L"The folder for recordings";

// A function of a system library. Null on older systems, which lack it.
template <class Function>
Function systemFunction(const wchar_t* library, const char* name) {
  HMODULE module = LoadLibraryExW(library, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  return module == nullptr
             ? nullptr
             : reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

int dpiOf(HWND window) {
  static const auto getDpiForWindow =
      systemFunction<UINT(WINAPI*)(HWND)>(L"user32.dll", "GetDpiForWindow");
  if (getDpiForWindow != nullptr) {
    return static_cast<int>(getDpiForWindow(window));
  }
  HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
  ReleaseDC(nullptr, screen);
  return dpi;
}

class LiveWindow {
 public:
  LiveWindow(LiveOptions options, RememberedSettings settings,
             std::function<void(const RememberedSettings&)> save)
      : settings_(std::move(settings)), save_(std::move(save)) {
    WNDCLASSEXW kind = {};
    kind.cbSize = sizeof kind;
    kind.style = CS_DBLCLKS;
    kind.lpfnWndProc = receive;
    kind.hInstance = GetModuleHandleW(nullptr);
    kind.hCursor = LoadCursor(nullptr, IDC_ARROW);
    kind.hIcon = LoadIcon(nullptr, IDI_APPLICATION);
    kind.lpszClassName = className;
    if (RegisterClassExW(&kind) == 0 ||
        CreateWindowExW(0, className, L"Live view", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT,
                        CW_USEDEFAULT, firstSize.cx, firstSize.cy, nullptr, nullptr, kind.hInstance,
                        this) == nullptr) {
      throw std::runtime_error("The window could not be opened.");
    }
    useDarkFrame();
    SetWindowPos(window_, nullptr, 0, 0, scaled(firstSize.cx, dpi_), scaled(firstSize.cy, dpi_),
                 SWP_NOMOVE | SWP_NOZORDER);
    show();
    if (options.sdkDirectory.empty()) {
      const auto chosen = askForFolder(sdkQuestion);
      if (!chosen) {
        if (window_ != nullptr) {
          DestroyWindow(window_);
        }
        return;
      }
      options.sdkDirectory = utf8FromPath(*chosen);
    }
    camera_.emplace(std::move(options), [this] {
      // One message is enough for all pending news.
      if (!hasNews_.exchange(true)) {
        PostMessageW(window_, newsMessage, 0, 0);
      }
    });
  }

  ~LiveWindow() {
    if (window_ != nullptr) {
      close();
    }
  }
  LiveWindow(const LiveWindow&) = delete;
  LiveWindow& operator=(const LiveWindow&) = delete;

  void run() {
    MSG message = {};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }

 private:
  enum class Overlay { None, Help, Cameras };

  static LRESULT CALLBACK receive(HWND window, UINT message, WPARAM word, LPARAM number) {
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

  LRESULT handle(UINT message, WPARAM word, LPARAM number) {
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
        keyPressed(
            {static_cast<int>(word), GetKeyState(VK_SHIFT) < 0, GetKeyState(VK_CONTROL) < 0});
        return 0;
      case WM_LBUTTONDOWN:
      case WM_LBUTTONDBLCLK:
        if ((word & MK_SHIFT) != 0) {
          startRegion(GET_X_LPARAM(number), GET_Y_LPARAM(number));
        } else {
          mousePressed(GET_X_LPARAM(number), GET_Y_LPARAM(number));
        }
        return 0;
      case WM_RBUTTONDOWN:
        startRegion(GET_X_LPARAM(number), GET_Y_LPARAM(number));
        return 0;
      case WM_MOUSEMOVE:
        mouseMoved(GET_X_LPARAM(number), GET_Y_LPARAM(number));
        return 0;
      case WM_LBUTTONUP:
      case WM_RBUTTONUP:
        mouseReleased(GET_X_LPARAM(number), GET_Y_LPARAM(number));
        return 0;
      case WM_CAPTURECHANGED:
        drag_ = {};
        drawnRegion_.reset();
        redrawPicture();
        return 0;
      case WM_MOUSEWHEEL: {
        POINT point = {GET_X_LPARAM(number), GET_Y_LPARAM(number)};
        ScreenToClient(window_, &point);
        wheelTurned(point.x, point.y, GET_WHEEL_DELTA_WPARAM(word) > 0 ? 1 : -1);
        return 0;
      }
      case WM_ENDSESSION:
        if (word != FALSE) {
          close();  // the process may end as soon as this returns
        }
        return 0;
      case WM_CLOSE:
        close();
        return 0;
      case WM_DESTROY:
        window_ = nullptr;
        PostQuitMessage(0);
        return 0;
      default:
        return DefWindowProcW(window_, message, word, number);
    }
  }

  std::optional<std::filesystem::path> askForFolder(const wchar_t* question,
                                                    const std::filesystem::path& now = {}) {
    try {
      const auto folder = chooseFolder(window_, question, now);
      // The system may have closed the window meanwhile.
      return window_ != nullptr ? folder : std::nullopt;
    } catch (const std::exception& error) {
      const std::wstring text = pathFromUtf8(error.what()).wstring();
      MessageBoxW(window_, text.c_str(), L"Live view", MB_OK | MB_ICONERROR);
      return std::nullopt;
    }
  }

  void close() {
    WINDOWPLACEMENT placement = {};
    placement.length = sizeof placement;
    if (GetWindowPlacement(window_, &placement) != 0) {
      const RECT& place = placement.rcNormalPosition;
      settings_.window = {place.left, place.top, place.right - place.left, place.bottom - place.top,
                          placement.showCmd == SW_SHOWMAXIMIZED};
    }
    ShowWindow(window_, SW_HIDE);  // the camera may need a moment
    camera_.reset();
    save_(settings_);
    DestroyWindow(window_);
  }

  // Where it was the last time, if a screen is there now.
  void show() {
    if (settings_.window) {
      const WindowPlace& place = *settings_.window;
      WINDOWPLACEMENT placement = {};
      placement.length = sizeof placement;
      placement.showCmd = static_cast<UINT>(place.isMaximized ? SW_SHOWMAXIMIZED : SW_SHOWNORMAL);
      placement.rcNormalPosition = {place.left, place.top, place.left + place.width,
                                    place.top + place.height};
      if (MonitorFromRect(&placement.rcNormalPosition, MONITOR_DEFAULTTONULL) != nullptr &&
          SetWindowPlacement(window_, &placement) != 0) {
        return;
      }
    }
    ShowWindow(window_, SW_SHOWDEFAULT);
  }

  void resized() {
    RECT client = {};
    GetClientRect(window_, &client);
    canvas_.resize(client.right, client.bottom, dpi_);
    layout_ = layOut(client.right, client.bottom, dpi_);
    noticeText_ = statusLine(*state_).text;
    if (!canvas_.isEmpty()) {
      layout_ =
          layOut(client.right, client.bottom, dpi_, noticeLines(canvas_, layout_, noticeText_));
    }
    redrawPicture();
    redrawPanel();
  }

  void moveToDpi(const RECT& suggested) {
    dpi_ = dpiOf(window_);
    SetWindowPos(window_, nullptr, suggested.left, suggested.top, suggested.right - suggested.left,
                 suggested.bottom - suggested.top, SWP_NOZORDER | SWP_NOACTIVATE);
    resized();
  }

  void paint() {
    PAINTSTRUCT painting = {};
    HDC screen = BeginPaint(window_, &painting);
    if (!canvas_.isEmpty()) {
      if (mustDrawPicture_) {
        drawPicture();
        mustDrawPicture_ = false;
      }
      if (mustDrawPanel_) {
        drawPanel(canvas_, layout_, {*state_, controls_, picture_});
        mustDrawPanel_ = false;
      }
      canvas_.show(screen, painting.rcPaint);
    }
    EndPaint(window_, &painting);
  }

  void drawPicture() {
    view_ = picture_.draw(canvas_.pixelsOf(layout_.picture), canvas_.valueOf(palette::picture));
    const PixelRect& area = layout_.picture;
    if (picture_.hasFrame()) {
      if (const auto& region = drawnRegion_ ? drawnRegion_ : state_->region) {
        drawRegion(canvas_, area, view_, *region);
      }
      if (hasCrosshair_) {
        drawCrosshair(canvas_, area, view_);
      }
      if (picture_.measurements().focus.star) {
        drawStarMark(canvas_, area, view_, *picture_.measurements().focus.star);
      }
    } else if (overlay_ == Overlay::None) {
      canvas_.text(area, emptyPictureText(*state_), TextSize::Title, palette::quietText,
                   TextAlign::Centre);
    }
    if (const auto countdown = countdownOf(*state_)) {
      drawCountdown(canvas_, area, *countdown);
    }
    if (overlay_ == Overlay::Help) {
      drawHelp(canvas_, area);
    } else if (overlay_ == Overlay::Cameras) {
      drawCameraList(canvas_, area, *state_, selected_);
    }
  }

  void newsCame() {
    hasNews_ = false;
    if (auto state = camera_->state(); state != state_) {
      const auto before = std::exchange(state_, std::move(state));
      stateCame(*before);
    }
    const oc::Frame frame = camera_->takeFrame();
    if (frame && frame.opening() == state_->capture.opening && isStreaming()) {
      picture_.setFrame({frame.layout(), frame.camera().bitDepth, frame.opening(), frame.pixels(),
                         std::make_shared<const oc::Frame>(frame)});
      if (picture_.measure(LivePicture::Clock::now())) {
        redrawPanel();
      }
      redrawPicture();
    }
  }

  void stateCame(const LiveState& before) {
    const oc::CaptureState& now = state_->capture;
    remember(settings_, *state_);
    if (now.opening != before.capture.opening || now.refusals != before.capture.refusals) {
      const oc::Settings& settings = now.settings;
      controls_ = {settings.exposureUs, settings.gain.value_or(0), settings.offset};
    }
    if (!isStreaming()) {
      picture_.clear();
    }
    if (state_->region != before.region) {
      picture_.setRegion(state_->region);
      redrawPicture();
    }
    const bool hasCountdown = countdownOf(*state_).has_value();
    if (!picture_.hasFrame() || hasCountdown || hadCountdown_) {
      redrawPicture();
    }
    hadCountdown_ = hasCountdown;
    if (statusLine(*state_).text != noticeText_) {
      resized();  // the notice may need more lines
    }
    if (state_->phase == LivePhase::Idle && !state_->cameras.empty() && !hasOfferedList_) {
      hasOfferedList_ = true;
      showOverlay(Overlay::Cameras);
    }
    redrawPanel();
  }

  bool isStreaming() const { return state_->phase == LivePhase::Streaming; }

  void keyPressed(const KeyPress& press) {
    if (overlay_ != Overlay::Cameras || !keyInCameraList(press)) {
      execute(commandOfKey(press));
    }
  }

  // True if the list used the key.
  bool keyInCameraList(const KeyPress& press) {
    if (press.key >= '0' && press.key <= '9') {
      chooseCamera(positionOf(state_->cameras, press.key - '0'));
    } else if (press.key == keys::enter) {
      chooseCamera(selected_);
    } else if (press.key == keys::up) {
      selected_ -= selected_ > 0 ? 1 : 0;
    } else if (press.key == keys::down) {
      selected_ += selected_ + 1 < state_->cameras.size() ? 1 : 0;
    } else {
      return false;
    }
    redrawPicture();
    return true;
  }

  void execute(ViewCommand command) {
    if (isStreaming()) {
      if (const auto controls = controlsAfter(command, controls_, *state_->camera())) {
        sendControls(*controls);
        return;
      }
      if (const auto move = regionMoveOf(command)) {
        camera_->send([move](LiveSession& session) { session.moveRegion(*move); });
        return;
      }
    }
    if (const auto levels = levelsAfter(command, picture_.levels())) {
      setLevels(*levels);
      return;
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
        camera_->send(&LiveSession::nextFormat);
        break;
      case ViewCommand::NextBin:
        camera_->send(&LiveSession::nextBin);
        break;
      case ViewCommand::ToggleRecording:
        camera_->send(&LiveSession::toggleRecording);
        break;
      case ViewCommand::Rescan:
        camera_->send(&LiveSession::rescan);
        break;
      case ViewCommand::WholeFrame:
        camera_->send([](LiveSession& session) { session.setRegion(std::nullopt); });
        break;
      case ViewCommand::NextLimit:
        camera_->send(&LiveSession::nextLimit);
        break;
      case ViewCommand::ChooseRecordings:
        if (const auto folder = askForFolder(recordingsQuestion, state_->recordings)) {
          camera_->send([folder](LiveSession& session) { session.useRecordings(*folder); });
        }
        break;
      case ViewCommand::ChooseSdk:
        if (const auto folder = askForFolder(sdkQuestion, pathFromUtf8(state_->sdkDirectory))) {
          hasOfferedList_ = false;
          camera_->send(
              [folder](LiveSession& session) { session.useSdkDirectory(utf8FromPath(*folder)); });
        }
        break;
      case ViewCommand::ToggleStretch:
        picture_.setStretched(!picture_.isStretched());
        break;
      case ViewCommand::ToggleZoom:
        picture_.setPixelByPixel(!picture_.isPixelByPixel());
        break;
      case ViewCommand::ToggleNightMode:
        canvas_.setNight(!canvas_.isNight());
        picture_.setTint(canvas_.isNight() ? ScreenTint::Red : ScreenTint::Natural);
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
        return;
    }
    redrawPicture();
    redrawPanel();
  }

  void mousePressed(int x, int y) {
    for (std::size_t index = 0; index < layout_.sliders.size(); ++index) {
      if (const PixelRect track = layout_.sliders[index].track; track.contains(x, y)) {
        const auto slider = static_cast<SliderKind>(index);
        startDrag([this, slider, track](int atX, int) {
          if (isStreaming()) {
            const double place = placeOnTrack(track, atX);
            sendControls(controlsAfter(slider, place, controls_, *state_->camera()));
          }
        });
        drag_(x, y);
        return;
      }
    }
    for (std::size_t index = 0; index < layout_.levels.size(); ++index) {
      if (const PixelRect track = layout_.levels[index].track; track.contains(x, y)) {
        startDrag([this, kind = levelKinds[index], track](int atX, int) {
          setLevels(levelsAfter(kind, placeOnTrack(track, atX), picture_.levels()));
        });
        drag_(x, y);
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
      const int row = cameraListPlace(layout_.picture, state_->cameras.size(), dpi_).rowAt(x, y);
      if (row >= 0) {
        chooseCamera(static_cast<std::size_t>(row));
      }
    } else if (overlay_ == Overlay::Help) {
      showOverlay(Overlay::None);
    } else if (layout_.picture.contains(x, y)) {
      dragFrom_ = {x, y};
      startDrag([this](int atX, int atY) { dragPicture(atX, atY); });
      isClick_ = true;
    }
  }

  // Draws a region from this place to the mouse, until the button is released.
  void startRegion(int x, int y) {
    if (drag_ || overlay_ != Overlay::None || !picture_.hasFrame() ||
        !layout_.picture.contains(x, y)) {
      return;
    }
    const double fromX = view_.frameX(x - layout_.picture.left);
    const double fromY = view_.frameY(y - layout_.picture.top);
    startDrag([this, fromX, fromY](int atX, int atY) {
      const FrameLayout& frame = state_->capture.layout;
      drawnRegion_ =
          regionBetween(fromX, fromY, view_.frameX(atX - layout_.picture.left),
                        view_.frameY(atY - layout_.picture.top), frame.width, frame.height);
      redrawPicture();
    });
  }

  // From now on until the button is released, this is called with the places of the mouse.
  void startDrag(std::function<void(int x, int y)> drag) {
    SetCapture(window_);
    drag_ = std::move(drag);
    isClick_ = false;
  }

  void dragPicture(int x, int y) {
    const int right = x - dragFrom_.x;
    const int down = y - dragFrom_.y;
    if (!isClick_ || std::abs(right) + std::abs(down) > scaled(4, dpi_)) {
      isClick_ = false;
      picture_.move(right, down);
      dragFrom_ = {x, y};
      redrawPicture();
    }
  }

  void mouseMoved(int x, int y) {
    if (drag_) {
      drag_(x, y);
    }
  }

  void mouseReleased(int x, int y) {
    if (!drag_) {
      return;
    }
    if (drawnRegion_) {
      camera_->send([region = *drawnRegion_](LiveSession& session) { session.setRegion(region); });
    }
    if (isClick_ && picture_.hasFrame()) {
      picture_.followStarAt(view_.frameX(x - layout_.picture.left),
                            view_.frameY(y - layout_.picture.top));
    }
    ReleaseCapture();
  }

  void wheelTurned(int x, int y, int clicks) {
    // In the order of SliderKind.
    constexpr std::array<std::pair<ViewCommand, ViewCommand>, 3> commands = {
        {{ViewCommand::LongerExposure, ViewCommand::ShorterExposure},
         {ViewCommand::MoreGain, ViewCommand::LessGain},
         {ViewCommand::MoreOffset, ViewCommand::LessOffset}}};
    for (std::size_t index = 0; index < commands.size(); ++index) {
      const SliderPlace& place = layout_.sliders[index];
      if (place.track.contains(x, y) || place.caption.contains(x, y)) {
        execute(clicks > 0 ? commands[index].first : commands[index].second);
      }
    }
  }

  void setLevels(const PictureLevels& levels) {
    picture_.setLevels(levels);
    redrawPicture();
    redrawPanel();
  }

  void sendControls(const Controls& controls) {
    controls_ = controls;
    camera_->send([controls](LiveSession& session) { session.setControls(controls); });
    redrawPanel();
  }

  void showOverlay(Overlay overlay) {
    overlay_ = overlay;
    selected_ = state_->chosen.value_or(0);
    redrawPicture();
  }

  void chooseCamera(std::size_t position) {
    if (position < state_->cameras.size()) {
      camera_->send([position](LiveSession& session) { session.choose(position); });
      showOverlay(Overlay::None);
    }
  }

  // Makes the title bar dark like the rest, if the system can.
  void useDarkFrame() {
    constexpr DWORD useImmersiveDarkMode = 20;
    using SetAttribute = HRESULT(WINAPI*)(HWND, DWORD, LPCVOID, DWORD);
    if (const auto setAttribute =
            systemFunction<SetAttribute>(L"dwmapi.dll", "DwmSetWindowAttribute")) {
      const BOOL yes = TRUE;
      setAttribute(window_, useImmersiveDarkMode, &yes, sizeof yes);
    }
  }

  void redrawPicture() {
    mustDrawPicture_ = true;
    const RECT area = rectOf(layout_.picture);
    InvalidateRect(window_, &area, FALSE);
  }

  void redrawPanel() {
    mustDrawPanel_ = true;
    for (const PixelRect& part : {layout_.panel, layout_.status, layout_.notice}) {
      const RECT area = rectOf(part);
      InvalidateRect(window_, &area, FALSE);
    }
  }

  RememberedSettings settings_;
  std::function<void(const RememberedSettings&)> save_;
  HWND window_ = nullptr;
  int dpi_ = 96;
  GdiCanvas canvas_;
  WindowLayout layout_;
  LivePicture picture_;
  std::shared_ptr<const LiveState> state_ = std::make_shared<LiveState>();
  Controls controls_;
  Overlay overlay_ = Overlay::None;
  std::size_t selected_ = 0;  // in the list of cameras
  bool hasOfferedList_ = false;
  bool hadCountdown_ = false;
  std::string noticeText_;                  // that the layout has lines for
  std::function<void(int x, int y)> drag_;  // empty while no button is pressed
  POINT dragFrom_ = {};
  std::optional<Region> drawnRegion_;  // until the button is released
  bool isClick_ = false;               // on the picture, and not moved yet
  PictureView view_;
  bool hasCrosshair_ = false;
  bool mustDrawPicture_ = true;
  bool mustDrawPanel_ = true;
  std::atomic<bool> hasNews_ = false;
  std::optional<LiveCamera> camera_;  // last: its thread uses the others
};

}  // namespace

void runLiveWindow(LiveOptions options, RememberedSettings settings,
                   std::function<void(const RememberedSettings&)> save) {
  LiveWindow(std::move(options), std::move(settings), std::move(save)).run();
}

}  // namespace orvane::host
