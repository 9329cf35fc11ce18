#include "reflection/cErrorPager.h"

#include "foundation/cLog.h"
#include "reflection/cXml.h"

namespace trellis {

void cErrorPager::print(const char* format, ...) {
    va_list args;
    va_start(args, format);
    const cStr message = cStr::Formatv(format, args);
    va_end(args);
    Text.ReserveMore(message.Length());
    Text.Append(message);
    if (Report) {
        cLog::Warning("%s", message.Text());
    }
}

void cErrorPager::xml_print(const cXml& node, const char* format, ...) {
    if (!Report) {
        return;
    }
    va_list args;
    va_start(args, format);
    const cStr message = cStr::Formatv(format, args);
    va_end(args);
    Text.ReserveMore(message.Length());
    Text.Append(message);

    // No more is rendered than is shown: a document of a million unknown elements asks a million times.
    constexpr int most = 500;
    cStr source;
    node.GetXMLSource(&source, 0, most + 1);
    if (source.Length() > most) {
        source.Remove(most, source.Length() - most);
        source.Append("...");
    }
    cLog::Warning("Class engine warning!\r\n\r\n%sXML source: %s\r\n", message.Text(), source.Text());
}

} // namespace trellis
