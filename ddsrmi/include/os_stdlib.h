/* SPDX-License-Identifier: Apache-2.0 */
#ifndef OS_STDLIB_H
#define OS_STDLIB_H

#ifdef __cplusplus
extern "C" {
#endif

/** Copies the text `src` with its terminating NUL to `dst`, which must have room for it; returns `dst`. */
char* os_strcpy(char* dst, const char* src);

#ifdef __cplusplus
}
#endif

#endif
