#pragma once

#include <VXFoundation/VXFoundation.h>

#define HOST_EXPORT __attribute__((visibility("default")))

/// A host in a shared object of its own, as small as a host can be: classes derived from the library's,
/// with operations, initialisers and class operations to override.

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

  /// Says no to fewer than one side.
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

/// Numbers that are made as they are walked.
class HOST_EXPORT Countdown : public NSFastEnumeration::Subclass<Countdown> {
 public:
  std::size_t count() const override { return 3; }

 protected:
  NSRef<NSObject> enumeratedObjectAtIndex(std::size_t index) const override;
};

/// An object of the host's own class of that name, in an unnamed namespace.
HOST_EXPORT NSRef<NSObject> hostNamesake();

/// Seen from the host's side of the border.
HOST_EXPORT NSRef<NSObject> hostMakesASquare();
HOST_EXPORT NSClass& hostClassOfTexts();
HOST_EXPORT NSClass& hostClassOfSquares();
