// Counts the heap's allocations of the whole program.
#pragma once

int AllocationCount();
