// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_RMI_DRILL_PLUGIN_H
#define TESTS_RMI_DRILL_PLUGIN_H

// What the library drill_plugin exports: clients whose reply hooks are code of that library.
extern "C" {

/// Starts the runtime, binds and makes calls without waiting for their replies. Null when there is no server.
void* drill_open();
typedef void* (*DrillOpen)();

/// Whether a call of this client is answered.
bool drill_is_answered(void* client);
typedef bool (*DrillIsAnswered)(void*);

/// Drops the client's proxy and stops its hold on the runtime.
void drill_close(void* client);
typedef void (*DrillClose)(void*);
}

#endif
