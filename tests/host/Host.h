#pragma once

#include <Foundation/NSFastEnumeration.h>
#include <Foundation/NSString.h>

#define HOST_EXPORT __attribute__((visibility("default")))

/// A minimal host in a separate shared object: classes derived from the library's, with operations,
/// initialisers and class operations to override.

/// Class operations that make an instance of the receiving class.
template <class Self, class Base>
class ShapeLayer : public NSObjectLayer<Self, Base> {
 public:
  template <class Derived>
  using Subclass = ShapeLayer<Derived, Self>;

  static NSRefPtr<Self> shapeWithSides(int sides) {
    const NSRef<Self> shape = Self::alloc();
    return shape->initWithSides(sides + Self::sidesAdded()) ? NSRefPtr<Self>(shape) : nullptr;
  }
};

class HOST_EXPORT Shape : public ShapeLayer<Shape, NSObject> {
 public:
  static int sidesAdded() { return 0; }

  /// Returns false for fewer than one side.
  virtual bool initWithSides(int sides);
  virtual int area() const;
  int sides() const { return sides_; }
  NSRef<Shape> itself() { return *this; }

 private:
  int sides_ = 0;
};

class HOST_EXPORT Polygon : public Shape::Subclass<Polygon> {
 public:
  static int sidesAdded() { return 1; }
  int area() const override { return 10 * sides(); }
};

class HOST_EXPORT Square : public Polygon::Subclass<Square> {
 public:
  bool initWithSides(int) override { return Polygon::initWithSides(4); }
};

/// A link of a chain.
class HOST_EXPORT Link : public NSObject::Subclass<Link> {
 public:
  NSRefPtr<Link> next;
};

/// Numbers that are made during enumeration.
class HOST_EXPORT Countdown : public NSFastEnumeration::Subclass<Countdown> {
 public:
  std::size_t count() const override { return 3; }

 protected:
  NSRef<NSObject> enumeratedObjectAtIndex(std::size_t index) const override;
};

/// Returns an object of the host's class Namesake, which is in an unnamed namespace.
HOST_EXPORT NSRef<NSObject> hostNamesake();

/// The host's side of the border.
HOST_EXPORT NSRef<NSObject> hostMakesASquare();
HOST_EXPORT NSClass& hostClassOfStrings();
