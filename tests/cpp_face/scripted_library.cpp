// A library whose answers the test decides, for testing the C++ face.
#include "cpp_face/scripted_library.hpp"

#include <mutex>

namespace orvane::testing {

namespace {

std::mutex oneCall;

// Answers a call of the library, and notices calls that overlap.
template <class Answer>
auto answered(const Answer& answer) {
  const std::unique_lock call(oneCall, std::try_to_lock);
  script().hasOverlap = script().hasOverlap || !call;
  return answer();
}

}  // namespace

Script& script() {
  static Script instance;
  return instance;
}

oc::Library scriptedLibrary() {
  oc::Library library{};
  library.library_dir = [](const char*) { answered([] {}); };
  library.scan = [] {
    return answered(
        [] { return script().scan ? script().scan() : static_cast<int>(script().infos.size()); });
  };
  library.libraries = [] { return answered([] { return script().libraries.c_str(); }); };
  library.info = [](int index) {
    return answered([&] { return script().infos.at(static_cast<std::size_t>(index)).c_str(); });
  };
  library.open = [](int index, int, int, int bin, int, std::int64_t, int, int) {
    ++script().opened;
    return answered([&] { return script().open(index, bin); });
  };
  library.width = [] { return answered([] { return 4; }); };
  library.height = [] { return answered([] { return 2; }); };
  library.buffer_size = [] { return answered([] { return 8; }); };
  library.read = [](std::uint8_t* buffer, int size, int) {
    return answered([&] { return script().read(buffer, size); });
  };
  library.apply = [](std::int64_t exposureUs, int gain, int offset) {
    return answered([&] { return script().apply(exposureUs, gain, offset); });
  };
  library.temperature = [] { return answered([] { return script().temperature(); }); };
  library.close = [] { answered([] { ++script().closed; }); };
  library.error = [] { return answered([] { return script().error.c_str(); }); };
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
