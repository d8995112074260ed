/* SPDX-License-Identifier: Apache-2.0 */
#ifndef PUBLISHED_OS_STDLIB_H
#define PUBLISHED_OS_STDLIB_H

#ifdef __cplusplus
extern "C" {
#endif

char* os_strcpy(char* dst, const char* src);

#ifdef __cplusplus
}
#endif

#endif
