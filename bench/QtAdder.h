#ifndef KVL_BENCH_QT_ADDER_H
#define KVL_BENCH_QT_ADDER_H

#include <QObject>

/// What Qt calls by name.
class QtAdder : public QObject {
  Q_OBJECT

 public:
  Q_INVOKABLE double add(double left, double right) { return left + right; }
};

#endif
