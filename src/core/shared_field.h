// Reading and writing one field of memory that other processes use at the same time.
#pragma once

namespace twr {

// Each is one relaxed access of the field's own width. A plain access would not do: a 32-bit compiler may split a double into two
// moves, and another process would see half of each value.
template <class T>
T Load(const T& field) {
    T value;
    __atomic_load(&field, &value, __ATOMIC_RELAXED);
    return value;
}

template <class T>
void Put(T& field, T value) {
    __atomic_store(&field, &value, __ATOMIC_RELAXED);
}

}  // namespace twr
