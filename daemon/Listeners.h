// Network interfaces and the acceptor threads, one per interface address.
#pragma once

void FillNetworkInterfaces(); ///< Refills the list of this machine's IPv4 addresses. Before the acceptors start only.
void ListInterfaces();        ///< Refills it and logs it.

/// Refills the list and logs it. For a front end that waits for the network; the daemon does not call it, as the
/// acceptors hold pointers into the list.
///
/// @return true when an address does not begin with "127"
bool Halyard_NetworkIsReady();

void StartAcceptors(); ///< One thread for each address in the list; one for all addresses when it is empty.

/// Thread function of an acceptor; it ends only when it cannot bind or listen. The first bind that fails in the process
/// ends the daemon.
///
/// @param address  a pointer to an `in_addr` that stays valid, or null for all addresses
void WaitAcceptConnThread(void* address);
