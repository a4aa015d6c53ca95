#pragma once

// Marks a namespace-scope or static member object of class type that other static objects may use
// before main: it is constructed before, and destroyed after, every object without the mark.
#if defined(__GNUC__)
#define QELTA_INIT_EARLY __attribute__((init_priority(101)))
#else
#error "Give this compiler a way to construct an object before ordinary static objects."
#endif
