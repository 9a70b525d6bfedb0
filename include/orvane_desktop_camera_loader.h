/**
 * @file
 * The library's thirteen functions for a program that loads the library at run time and does not
 * link it. C11 and C++, Windows and Linux, nothing to build.
 *
 *     OrvaneDesktopCamera camera;
 *     char message[256];
 *     if (!orvane_desktop_camera_load(&camera, "C:\\Program Files\\MyCapture\\"
 *                                     "orvane_desktop_camera.dll", message, sizeof message)) {
 *       puts(message);  (run without cameras)
 *     } else {
 *       int count = camera.scan();
 *       ...
 *       orvane_desktop_camera_unload(&camera);
 *     }
 *
 * Each member does what the function of the same name in orvane_desktop_camera.h does: scan is
 * oc_scan() and so on. What that header says about threads, strings, errors and exceptions holds
 * here too. The library has one state in a process, however often it is loaded: two
 * OrvaneDesktopCamera of one file share the catalogue and the open camera, and no two calls may
 * overlap, whichever of them they go through. The two functions that load and unload count as
 * calls.
 *
 * On Windows this header includes <windows.h>. On Linux, link with -ldl where the C library is
 * older than glibc 2.34.
 */
#ifndef ORVANE_DESKTOP_CAMERA_LOADER_H
#define ORVANE_DESKTOP_CAMERA_LOADER_H

#include <stddef.h>
#include <stdio.h>
#include <string.h>

#include "orvane_desktop_camera.h"

#if defined(_WIN32)
#  if !defined(WIN32_LEAN_AND_MEAN)
#    define WIN32_LEAN_AND_MEAN
#  endif
#  if !defined(NOMINMAX)
#    define NOMINMAX
#  endif
#  include <windows.h>
#else
#  include <dlfcn.h>
#endif

/* NOLINTBEGIN(modernize-use-nullptr): C programs read this file too */

#ifdef __cplusplus
extern "C" {
#endif

/** The loaded library. All members are null before a load, after one that failed and after the
 * unload. */
typedef struct OrvaneDesktopCamera {
  void (*library_dir)(const char* dir); /**< oc_library_dir() */
  int (*scan)(void);                    /**< oc_scan() */
  const char* (*libraries)(void);       /**< oc_libraries() */
  const char* (*info)(int index);       /**< oc_info() */
  int (*open)(int index, int width, int height, int bin, int format, int64_t exposureUs, int gain,
              int offset);                                       /**< oc_open() */
  int (*width)(void);                                            /**< oc_width() */
  int (*height)(void);                                           /**< oc_height() */
  int (*buffer_size)(void);                                      /**< oc_buffer_size() */
  int (*read)(uint8_t* buffer, int bufferLength, int timeoutMs); /**< oc_read() */
  int (*apply)(int64_t exposureUs, int gain, int offset);        /**< oc_apply() */
  double (*temperature)(void);                                   /**< oc_temperature() */
  void (*close)(void);                                           /**< oc_close() */
  const char* (*error)(void);                                    /**< oc_error() */
  void* module; /**< the operating system's handle of the library */
} OrvaneDesktopCamera;

/** @cond for orvane_desktop_camera_load() only */
static inline void* orvane_desktop_camera_open_module(const char* file) {
#if defined(_WIN32)
  wchar_t path[4096];
  if (MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, file, -1, path,
                          (int)(sizeof path / sizeof path[0])) == 0) {
    return NULL;
  }
  /* Neither the current directory nor PATH is searched. */
  return (void*)LoadLibraryExW(path, NULL,
                               LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
#else
  return dlopen(file, RTLD_NOW | RTLD_LOCAL);
#endif
}
/** @endcond */

/**
 * Releases the library and makes every member null; does nothing with one that is not loaded.
 * Call close() before: unloading closes no camera. The SDKs stay loaded until the process ends.
 * When this was the library's last user in the process, its strings, catalogue and directory are
 * gone.
 *
 * @param camera what orvane_desktop_camera_load() filled in
 */
static inline void orvane_desktop_camera_unload(OrvaneDesktopCamera* camera) {
  void* module = camera->module;
  memset(camera, 0, sizeof *camera);
  if (module == NULL) {
    return;
  }
#if defined(_WIN32)
  FreeLibrary((HMODULE)module);
#else
  dlclose(module);
#endif
}

/**
 * Loads the library and looks up its functions.
 *
 * @param camera filled in; what it holds before does not matter
 * @param file UTF-8, a full path, as "C:\\...\\orvane_desktop_camera.dll"; not null. On Windows a
 *     path fails that is not a full one, is not valid UTF-8, or has 4096 characters or more. On
 *     Linux the system looks for a name without a slash.
 * @param message receives one sentence after a failure, otherwise ""; cut to fit; may be null
 * @param messageLength its size in bytes
 * @return 1, or 0 after a failure: nothing stays loaded then, and every member is null
 */
static inline int orvane_desktop_camera_load(OrvaneDesktopCamera* camera, const char* file,
                                             char* message, size_t messageLength) {
  const struct {
    const char* name;
    void* slot;
  } functions[] = {{"oc_library_dir", (void*)&camera->library_dir},
                   {"oc_scan", (void*)&camera->scan},
                   {"oc_libraries", (void*)&camera->libraries},
                   {"oc_info", (void*)&camera->info},
                   {"oc_open", (void*)&camera->open},
                   {"oc_width", (void*)&camera->width},
                   {"oc_height", (void*)&camera->height},
                   {"oc_buffer_size", (void*)&camera->buffer_size},
                   {"oc_read", (void*)&camera->read},
                   {"oc_apply", (void*)&camera->apply},
                   {"oc_temperature", (void*)&camera->temperature},
                   {"oc_close", (void*)&camera->close},
                   {"oc_error", (void*)&camera->error}};
  size_t i;
  messageLength = message == NULL ? 0 : messageLength;
  snprintf(message, messageLength, "%s", "");
  memset(camera, 0, sizeof *camera);
  camera->module = orvane_desktop_camera_open_module(file);
  if (camera->module == NULL) {
    snprintf(message, messageLength, "Cannot load %s", file);
    return 0;
  }
  for (i = 0; i < sizeof functions / sizeof functions[0]; ++i) {
#if defined(_WIN32)
    FARPROC address = GetProcAddress((HMODULE)camera->module, functions[i].name);
#else
    void* address = dlsym(camera->module, functions[i].name);
#endif
    /* Standard C converts no object pointer into a function pointer. */
    memcpy(functions[i].slot, &address, sizeof address);
    if (address == NULL) {
      snprintf(message, messageLength, "%s has no function %s", file, functions[i].name);
      orvane_desktop_camera_unload(camera);
      return 0;
    }
  }
  return 1;
}

#ifdef __cplusplus
}
#endif

/* NOLINTEND(modernize-use-nullptr) */

#endif
