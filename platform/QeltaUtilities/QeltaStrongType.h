#pragma once

/// A value of type T that the type system keeps apart from every other T.
///
/// Tag is any type, an incomplete one will do; it only names the kind. Conversion from and to T is
/// always spelled out. Size, alignment and layout are those of T. A default constructed one holds
/// T{}.
template <class T, class Tag>
class QeltaStrongType {
 public:
  constexpr QeltaStrongType() = default;
  constexpr explicit QeltaStrongType(T value) : m_Value(value) {}

  constexpr T value() const { return m_Value; }

  friend constexpr bool operator==(QeltaStrongType a, QeltaStrongType b) {
    return a.m_Value == b.m_Value;
  }
  friend constexpr bool operator!=(QeltaStrongType a, QeltaStrongType b) {
    return a.m_Value != b.m_Value;
  }
  friend constexpr bool operator<(QeltaStrongType a, QeltaStrongType b) {
    return a.m_Value < b.m_Value;
  }
  friend constexpr bool operator>(QeltaStrongType a, QeltaStrongType b) {
    return a.m_Value > b.m_Value;
  }
  friend constexpr bool operator<=(QeltaStrongType a, QeltaStrongType b) {
    return a.m_Value <= b.m_Value;
  }
  friend constexpr bool operator>=(QeltaStrongType a, QeltaStrongType b) {
    return a.m_Value >= b.m_Value;
  }

 private:
  T m_Value{};
};
