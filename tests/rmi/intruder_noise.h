// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_RMI_INTRUDER_NOISE_H
#define TESTS_RMI_INTRUDER_NOISE_H

namespace intruder {

/// Publishes to everybody on both topics, `samples` of each kind: bytes that are no sample, samples of other
/// types, and messages that fit nobody.
void make_noise(unsigned samples, unsigned seed);

} // namespace intruder

#endif
