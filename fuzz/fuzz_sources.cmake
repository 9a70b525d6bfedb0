# The sources of the fuzzers and of the replay of their corpus.

# One run of the library against adversarial SDKs, without main().
orvane_family_files(families adversarial_sdks/ .cpp)
set(ORVANE_ADVERSARIAL_SOURCES
  adversarial_sdks/adversary.cpp
  adversarial_sdks/session.cpp
  ${families})
list(TRANSFORM ORVANE_ADVERSARIAL_SOURCES PREPEND ${CMAKE_CURRENT_LIST_DIR}/)
list(APPEND ORVANE_ADVERSARIAL_SOURCES ${PROJECT_SOURCE_DIR}/tests/doubles/scripted_platform.cpp)
set(ORVANE_FUZZ_INCLUDES
  ${CMAKE_CURRENT_LIST_DIR}
  ${PROJECT_SOURCE_DIR}/include
  ${PROJECT_SOURCE_DIR}/src
  ${PROJECT_SOURCE_DIR}/tests)

# What the network server parses itself. It stands on the standard library alone.
set(ORVANE_REQUEST_SOURCES
  ${CMAKE_CURRENT_LIST_DIR}/alpaca_requests/request_check.cpp
  ${PROJECT_SOURCE_DIR}/hosts/oc_alpaca/host_header.cpp
  ${PROJECT_SOURCE_DIR}/hosts/oc_alpaca/parameters.cpp)
list(APPEND ORVANE_FUZZ_INCLUDES ${PROJECT_SOURCE_DIR}/hosts)

# orvane_fuzz_json: the header of the JSON parser for the descriptions. The header is in a system
# directory, which must not be an include directory of a cross build. Therefore the include
# directory is a new one that contains only a link to it.

if(NOT TARGET orvane_fuzz_json)
  find_path(ORVANE_NLOHMANN_JSON_DIR nlohmann/json.hpp
    PATHS /usr/include /usr/local/include NO_CMAKE_FIND_ROOT_PATH
    DOC "Directory with nlohmann/json.hpp")
  if(NOT ORVANE_NLOHMANN_JSON_DIR)
    message(FATAL_ERROR "ORVANE_NLOHMANN_JSON_DIR is not set: install nlohmann-json3-dev.")
  endif()
  set(directory ${PROJECT_BINARY_DIR}/fuzz-headers)
  file(MAKE_DIRECTORY ${directory})
  file(CREATE_LINK ${ORVANE_NLOHMANN_JSON_DIR}/nlohmann ${directory}/nlohmann
    COPY_ON_ERROR SYMBOLIC)
  add_library(orvane_fuzz_json INTERFACE)
  target_include_directories(orvane_fuzz_json SYSTEM INTERFACE ${directory})
endif()
