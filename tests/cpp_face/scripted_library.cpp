// A library whose answers a test decides, for the parts of the C++ face that call it.
#include "cpp_face/scripted_library.hpp"

namespace orvane::testing {

namespace {

// Notices calls that overlap.
class Call {
 public:
  Call() {
    if (inside.fetch_add(1) != 0) {
      script().hasOverlap = true;
    }
  }
  ~Call() { --inside; }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

 private:
  static inline std::atomic<int> inside{0};
};

}  // namespace

Script& script() {
  static Script instance;
  return instance;
}

oc::Library scriptedLibrary() {
  oc::Library library{};
  library.library_dir = [](const char*) { const Call call; };
  library.scan = [] {
    const Call call;
    return script().scan ? script().scan() : static_cast<int>(script().infos.size());
  };
  library.libraries = [] {
    const Call call;
    return script().libraries.c_str();
  };
  library.info = [](int index) {
    const Call call;
    return script().infos.at(static_cast<std::size_t>(index)).c_str();
  };
  library.open = [](int index, int, int, int bin, int, std::int64_t, int, int) {
    const Call call;
    ++script().opened;
    return script().open(index, bin);
  };
  library.width = [] {
    const Call call;
    return 4;
  };
  library.height = [] {
    const Call call;
    return 2;
  };
  library.buffer_size = [] {
    const Call call;
    return 8;
  };
  library.read = [](std::uint8_t* buffer, int size, int) {
    const Call call;
    return script().read(buffer, size);
  };
  library.apply = [](std::int64_t exposureUs, int gain, int offset) {
    const Call call;
    return script().apply(exposureUs, gain, offset);
  };
  library.temperature = [] {
    const Call call;
    return script().temperature();
  };
  library.close = [] {
    const Call call;
    ++script().closed;
  };
  library.error = [] {
    const Call call;
    return script().error.c_str();
  };
  return library;
}

std::string infoText(int index, const std::string& name) {
  return "{\"id\":" + std::to_string(index) + ",\"name\":\"" + name +
         R"(","maxWidth":4,"maxHeight":2,"bitDepth":12,"pixelSizeUm":3.75,"isColor":true,)"
         R"("isCooled":false,"isUsb3Camera":true,"isUsb3Host":false,"bins":[1,2],)"
         R"("formats":[0,2,3,1],"depths":[8,16],"maxExposureUs":2000000000,"minGain":-25,)"
         R"("maxGain":570,"bayer":9})";
}

}  // namespace orvane::testing
