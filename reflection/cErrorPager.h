// Collector of what went wrong during a load.
#pragma once

#include "foundation/cStr.h"

namespace trellis {

class cXml;

/// A local value that a caller hands down through `cClass::Load` and reads afterwards.
class cErrorPager {
public:
    explicit cErrorPager(bool report = false) : Report(report) {}

    /// Appends to the text, and logs a warning when `Report` is set.
    void print(const char* format, ...) __attribute__((format(printf, 2, 3)));

    /// With `Report` unset nothing at all, so that a silent load costs nothing. Otherwise appends the message to the
    /// text and logs it together with the first 500 characters of the node's source.
    void xml_print(const cXml& node, const char* format, ...) __attribute__((format(printf, 3, 4)));

    cStr Text; ///< All messages so far.
    bool Report;
};

} // namespace trellis
