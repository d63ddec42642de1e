#pragma once

/// Marks what the shared library offers to programs that link it; all else stays inside of it.
#define OVIK_API __attribute__((visibility("default")))
