// The library on which the stand-in SDK depends.
#pragma once

/// Always 4711, which proves that the library was called.
extern "C" int numberOfTheDependency();
