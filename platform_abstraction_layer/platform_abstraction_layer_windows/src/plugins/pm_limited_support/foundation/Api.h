// foundation/Api.h
//
// How a class or a function of the plug-in is exported from the library, or imported by a program that
// uses it.
#pragma once

#if defined(PM_LIMITED_SUPPORT_EXPORTS)
#define ORVL_API __declspec(dllexport)
#else
#define ORVL_API __declspec(dllimport)
#endif
