#!/bin/sh
# The example in README.md is the compiled one, line for line.
sed -n '/^```cpp$/,/^```$/p' README.md | sed '1d;$d' | diff - examples/cpp/first_steps.cpp
