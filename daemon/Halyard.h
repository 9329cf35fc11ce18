// The service: start-up, the periodic step, the roster and its one-line protocol, the port setting, process control.
#pragma once

#include "foundation/cStr.h"

/// Obeys the words `list`, `stop` and `daemon` of the command line. Returns in a process that is to serve: the
/// daemonised child, or the foreground copy when there is none of the words.
void Halyard_OnPreInit();

void Halyard_OnInit();    ///< Settings from environment and port file, then one acceptor thread per interface.
void Halyard_OnProcess(); ///< The periodic step: drops workstations not seen for more than 120000 ms.
void Halyard_OnFree();    ///< Closes all sockets.
[[noreturn]] void Halyard_OnExit(); ///< Closes all sockets and ends the process with status 0.

/// Answers a workstation's request: an id in hexadecimal joins or refreshes and gets an acknowledgement, "stop" and an
/// id leaves, anything else is ignored. The caller closes the connection.
///
/// @param sock     the connection
/// @param request  terminated text of at most 4095 bytes
void Halyard_HandleClientRequest(int sock, const char* request);

/// The title and the roster, a line each: name, tab, time of joining. Takes the roster's mutex.
void Halyard_ListClients(trellis::cStr* out);

int Halyard_GetPort();

/// Stores a new port in the port file; it is bound at the next start.
void Halyard_OnEnterPort(int value);

/// Signal 12 is how a `list` copy asks. Its handler takes locks and memory, so the daemon's threads hold the signal
/// back and the main thread lets it in where it holds neither: while it sleeps.
void Halyard_HoldListSignal();
void Halyard_AdmitListSignal();
