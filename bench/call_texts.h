// SPDX-License-Identifier: Apache-2.0
#ifndef BENCH_CALL_TEXTS_H
#define BENCH_CALL_TEXTS_H

// What both ways of calling send. Macros, so that a JSON text can be put together from them.
#define MAC_ADDR "00:11:22:33:44:55"
#define CONFIG "interval=60"

#endif
