# SPDX-License-Identifier: Apache-2.0
"""Names that an interface file cannot use, because what is generated from it would not compile."""

import errno

# Keywords of C and C++ up to C++20, and the macros that their standard headers make of plain words.
_C_AND_CPP = frozenset("""
    alignas alignof and and_eq asm assert auto bitand bitor bool break case catch char char8_t char16_t char32_t
    class co_await co_return co_yield compl complex concept const consteval constexpr constinit const_cast continue
    decltype default delete do double dynamic_cast else enum errno explicit export extern false float for friend
    goto if inline int linux long mutable namespace new noexcept not not_eq NULL nullptr offsetof operator or or_eq
    private protected public register reinterpret_cast requires restrict return short signed sizeof static
    static_assert static_cast stderr stdin stdout struct switch template this thread_local throw true try typedef
    typeid typename typeof union unix unsigned using virtual void volatile wchar_t while xor xor_eq
    """.split())

# Macros that the headers which generated code includes bring with them.
_MACROS = frozenset(errno.errorcode.values()) | {"BUFSIZ", "EOF", "WEOF"}

# Scopes that the generated code refers to.
_SCOPES = frozenset(("dds", "dds_rmi", "org", "std"))

# Members of the classes that proxies and skeletons derive from.
_MEMBERS = frozenset("""
    dec_refcount getTimeout inc_refcount m_channel send_oneway send_request send_request_and_wait setTimeout
    """.split())


def objection(name):
    """Why `name` cannot be used for anything; None when it can."""
    if name in _C_AND_CPP:
        return "is a word of C or C++"
    if name in _MACROS:
        return "is a macro of the C library"
    if name.lower() in _SCOPES:
        return "is a scope that the generated code needs"
    return None


def is_member(name):
    """Whether a class that proxies or skeletons derive from has a member of that name."""
    return name in _MEMBERS


def is_exception_member(name):
    """Whether the class that exceptions derive from has a member of that name."""
    return name == "what"


def free_name(wanted, taken):
    """`wanted`, or something like it that is not in `taken`."""
    while wanted in taken:
        wanted += "_"
    return wanted
