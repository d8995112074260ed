// SPDX-License-Identifier: Apache-2.0
// A library that is no plug-in.
extern "C" int something_else()
{
    return 1;
}
