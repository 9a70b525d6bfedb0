// The system's dialog for choosing a folder.
#include "live_view/folder_choice_windows.hpp"

// After windows.h, which it needs.
#include <shobjidl.h>

#include <memory>
#include <stdexcept>

namespace orvane::host {

namespace {

struct Release {
  void operator()(IUnknown* object) const { object->Release(); }
  void operator()(wchar_t* text) const { CoTaskMemFree(text); }
};
template <class Interface>
using ComPointer = std::unique_ptr<Interface, Release>;

// Prepares this thread for COM.
class ComUse {
 public:
  ComUse() : isReady_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
  ~ComUse() {
    if (isReady_) {
      CoUninitialize();
    }
  }
  ComUse(const ComUse&) = delete;
  ComUse& operator=(const ComUse&) = delete;

 private:
  bool isReady_;
};

void require(HRESULT result) {
  if (FAILED(result)) {
    throw std::runtime_error("The dialog for choosing a folder could not be opened.");
  }
}

}  // namespace

std::optional<std::filesystem::path> chooseFolder(HWND owner, const wchar_t* title,
                                                  const std::filesystem::path& now) {
  const ComUse use;
  IFileOpenDialog* made = nullptr;
  require(CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER, IID_IFileOpenDialog,
                           reinterpret_cast<void**>(&made)));
  const ComPointer<IFileOpenDialog> dialog(made);
  require(dialog->SetOptions(FOS_PICKFOLDERS | FOS_FORCEFILESYSTEM | FOS_PATHMUSTEXIST));
  require(dialog->SetTitle(title));
  require(dialog->SetOkButtonLabel(L"Choose"));
  IShellItem* start = nullptr;
  if (SUCCEEDED(SHCreateItemFromParsingName(now.c_str(), nullptr, IID_IShellItem,
                                            reinterpret_cast<void**>(&start)))) {
    const ComPointer<IShellItem> folder(start);
    dialog->SetFolder(folder.get());
  }
  const HRESULT shown = dialog->Show(owner);
  if (shown == HRESULT_FROM_WIN32(ERROR_CANCELLED)) {
    return std::nullopt;
  }
  require(shown);
  IShellItem* chosen = nullptr;
  require(dialog->GetResult(&chosen));
  const ComPointer<IShellItem> item(chosen);
  wchar_t* name = nullptr;
  require(item->GetDisplayName(SIGDN_FILESYSPATH, &name));
  const ComPointer<wchar_t> text(name);
  return std::filesystem::path(text.get());
}

}  // namespace orvane::host
