// One connection, one request, one reply: the thread function of a connection, and the pages for a browser.
#pragma once

#include "foundation/cStr.h"

/// Thread function of an accepted connection: reads once, replies once, closes. What comes behind the first 4095 bytes
/// is thrown away unread, so that the close does not reset the reply.
///
///     GET with "/log" anywhere     the log page
///     GET with 'H' at byte 6       the status page ("GET / HTTP/1.1")
///     any other GET                nothing
///     anything else                a workstation's request
///
/// @param socket  points at the descriptor, registered with `CSocket`
void HandleSocket(void* socket);

/// A whole document; `body` goes in as it is.
void GenHtmlWithTitleAndBody(trellis::cStr* out, const char* title, const char* body);

/// An unordered list. Nothing is escaped: an item with markup in it is markup.
void GenHtmlList(const trellis::cList<trellis::cStr>& items, trellis::cStr* out);

void GenHtmlStatus(trellis::cStr* out); ///< Takes the roster's mutex.
void GenHtmlLog(trellis::cStr* out);    ///< Takes the log's mutex.

/// A whole HTTP reply. There is no length in it: the closing of the connection ends it.
void GenHTTPPacket(const trellis::cStr& body, trellis::cStr* out);
