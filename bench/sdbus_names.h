// SPDX-License-Identifier: Apache-2.0
#ifndef BENCH_SDBUS_NAMES_H
#define BENCH_SDBUS_NAMES_H

#define BUS_NAME "bench.Exchange"
#define BUS_OBJECT "/bench/Exchange"
#define BUS_METHOD "NodeSetConfig"

#endif
