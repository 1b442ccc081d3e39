#include "python/src/convert.h"

#include <string>

#include "zelk/convert/text.h"
#include "zelk/numbers/integer.h"

namespace zelk::python {
namespace {

/// Kept until the process ends, as there is one interpreter only.
struct Names {
  py::object decimal = py::module_::import("decimal").attr("Decimal");
  py::object fraction = py::module_::import("fractions").attr("Fraction");
  py::object rational = py::module_::import("numbers").attr("Rational");
  py::object lowest_terms = py::module_::import("zelk._terms").attr("LowestTerms");
  py::object from_bytes = py::handle(reinterpret_cast<PyObject*>(&PyLong_Type)).attr("from_bytes");
  py::str to_bytes{"to_bytes"};
  py::str bit_length{"bit_length"};
  py::str as_integer_ratio{"as_integer_ratio"};
  py::str little{"little"};
  py::object enclosure;
};

Names* names = nullptr;

bool is_instance(py::handle object, py::object const& type) {
  return PyObject_TypeCheck(object.ptr(), reinterpret_cast<PyTypeObject*>(type.ptr())) != 0;
}

py::object owned(PyObject* made) {
  if (made == nullptr) throw py::error_already_set();
  return py::reinterpret_steal<py::object>(made);
}

template <class... Arguments>
py::object call(py::object const& function, Arguments const&... arguments) {
  return owned(PyObject_CallFunctionObjArgs(function.ptr(), arguments.ptr()..., nullptr));
}

template <class... Arguments>
py::object call_method(py::handle object, py::str const& name, Arguments const&... arguments) {
  return owned(PyObject_CallMethodObjArgs(object.ptr(), name.ptr(), arguments.ptr()..., nullptr));
}

/// Requires: an object of Python's `int`.
void assign(mpz_ptr n, py::object integer) {
  int beyond = 0;
  long const word = PyLong_AsLongAndOverflow(integer.ptr(), &beyond);
  if (beyond == 0) return mpz_set_si(n, word);
  if (beyond < 0) integer = owned(PyNumber_Negative(integer.ptr()));
  auto const bits = PyLong_AsSize_t(call_method(integer, names->bit_length).ptr());
  auto const bytes = call_method(integer, names->to_bytes, py::int_(bits / 8 + 1), names->little);
  mpz_import(n, bits / 8 + 1, -1, 1, 0, 0, PyBytes_AS_STRING(bytes.ptr()));
  if (beyond < 0) mpz_neg(n, n);
}

QNumber quotient(py::handle numerator, py::handle denominator) {
  auto const above = owned(PyNumber_Index(numerator.ptr()));
  auto const below = owned(PyNumber_Index(denominator.ptr()));
  // Whoever says that they are in lowest terms need not be right.
  Integer n, d;
  assign(n, above);
  assign(d, below);
  if (mpz_sgn(d.get()) != 0) return QNumber::from_mpz(n, d);
  PyErr_SetString(PyExc_ZeroDivisionError, "a rational number with the denominator 0");
  throw py::error_already_set();
}

/// By its text, whose exponent is limited.
QNumber from_decimal(py::handle object) {
  std::string const text = py::str(object);
  if (text.find_first_of("NnIi") != std::string::npos)
    throw py::value_error("expected a finite number, not Decimal('" + text + "')");
  return convert::parse_rational(text);
}

}  // namespace

void import_names() { names = new Names; }

void set_enclosure(py::handle type) { names->enclosure = py::reinterpret_borrow<py::object>(type); }

bool is_enclosure(py::handle object) { return is_instance(object, names->enclosure); }

QNumber from_integer(py::handle object) {
  auto const integer = owned(PyNumber_Index(object.ptr()));
  int beyond = 0;
  long const word = PyLong_AsLongAndOverflow(integer.ptr(), &beyond);
  if (beyond == 0) return word;
  Integer n;
  assign(n, integer);
  return QNumber::from_mpz(n, IntegerView(1));
}

QNumber from_rational(py::handle object) {
  if (PyLong_CheckExact(object.ptr())) return from_integer(object);
  if (object.get_type().is(names->fraction)) {
    auto const ratio = call_method(object, names->as_integer_ratio);
    return quotient(PyTuple_GetItem(ratio.ptr(), 0), PyTuple_GetItem(ratio.ptr(), 1));
  }
  if (is_instance(object, names->decimal)) return from_decimal(object);
  int const is_rational = PyObject_IsInstance(object.ptr(), names->rational.ptr());
  if (is_rational < 0) throw py::error_already_set();
  if (is_rational > 0) return quotient(object.attr("numerator"), object.attr("denominator"));
  std::string reason = "expected a rational number or a text, not ";
  reason += Py_TYPE(object.ptr())->tp_name;
  if (PyFloat_Check(object.ptr()))
    reason +=
        ": a text such as '0.1' is taken exactly, and Fraction(x) is the exact value of a float";
  throw py::type_error(reason);
}

py::object to_int(mpz_srcptr n) {
  if (mpz_fits_slong_p(n)) return py::int_(mpz_get_si(n));
  constexpr std::size_t size_of_limb = sizeof(mp_limb_t);
  auto const size = static_cast<Py_ssize_t>(mpz_size(n) * size_of_limb);
  auto const bytes = owned(PyBytes_FromStringAndSize(nullptr, size));
  mpz_export(PyBytes_AS_STRING(bytes.ptr()), nullptr, -1, size_of_limb, -1, 0, n);
  auto magnitude = call(names->from_bytes, bytes, names->little);
  return mpz_sgn(n) > 0 ? magnitude : owned(PyNumber_Negative(magnitude.ptr()));
}

py::object to_fraction(QNumber const& q) {
  auto const above = q.numerator(), below = q.denominator();
  auto const numerator = to_int(above);
  if (q.is_integer()) return call(names->fraction, numerator);
  auto const denominator = to_int(below);
  // A Fraction of another rational number takes its parts as they are; of words it is made sooner
  // than that other number.
  if (mpz_size(above) <= 1 && mpz_size(below) <= 1)
    return call(names->fraction, numerator, denominator);
  return call(names->fraction, call(names->lowest_terms, numerator, denominator));
}

py::tuple to_pair(std::pair<QNumber, QNumber> const& bounds) {
  return py::make_tuple(to_fraction(bounds.first), to_fraction(bounds.second));
}

}  // namespace zelk::python
