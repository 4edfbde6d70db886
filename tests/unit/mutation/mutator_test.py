"""What the mutator makes of small texts, and what it must leave alone."""
import unittest

from mutator import mutants


def changed(source, is_header=False):
    return {mutant.apply(source) for mutant in mutants(source, is_header)}


def within_function(statement, is_header=False):
    """The mutants of one statement, without the function around it."""
    head, tail = "void f() {", "}"
    return {text[len(head):-len(tail)] for text in changed(head + statement + tail, is_header)}


class Changes(unittest.TestCase):
    CASES = [
        # operators
        ("ok = a < b;", {"ok = a <= b;", ";"}),
        ("ok = a >= b;", {"ok = a > b;", ";"}),
        ("ok = a == b;", {"ok = a != b;", ";"}),
        ("ok = a && b;", {"ok = a || b;", ";"}),
        ("x = a + b;", {"x = a - b;", ";"}),
        ("x = a * b;", {"x = a / b;", ";"}),
        ("x = a % b;", {"x = a * b;", ";"}),
        ("x = a & b;", {"x = a | b;", ";"}),
        ("x = a << b;", {"x = a >> b;", ";"}),
        ("x += a;", {"x -= a;", ";"}),
        ("x <<= a;", {"x >>= a;", ";"}),
        ("x++;", {"x--;", ";"}),
        ("--x;", {"++x;", ";"}),
        ("x = !a;", {"x = a;", ";"}),
        # constants
        ("x = 7;", {"x = 8;", "x = 6;", ";"}),
        ("x = 0x0fU;", {"x = 0x10U;", "x = 0xeU;", ";"}),
        ("x = 1'000;", {"x = 1001;", "x = 999;", ";"}),
        ("char text[64];", {"char text[65];", "char text[63];"}),
        ("x = true;", {"x = false;", ";"}),
        # conditions
        ("if (a) b();", {"if (!(a)) b();", "if (a) ;"}),
        ("if (a == b) c();", {"if (a != b) c();", "if (a == b) ;"}),
        ("if (!a) b();", {"if (a) b();", "if (!a) ;"}),
        ("if (const T* x = a(b)) c();", {"if (const T* x = a(b); !x) c();", "if (const T* x = a(b)) ;"}),
        ("while (a) b();", {"while (!(a)) b();", "while (a) ;"}),
        ("for (int i = a; b; ++i) c();",
         {"for (int i = a; !(b); ++i) c();", "for (int i = a; b; --i) c();", "for (int i = a; b; ++i) ;"}),
        ("x = a ? b : c;", {"x = !(a) ? b : c;", ";"}),
        # statements
        ("const int x = a(b);", set()),
        ("DottedText x;", set()),
        ("char* x = a;", set()),
        ("a.b->c(d, [e](int f) { return; });", {";"}),
        ("pendra::a(b);", {";"}),
        ("*a = b;", {";"}),
        ("a[b].c = d;", {";"}),
        ("while (a) break;", {"while (!(a)) break;", "while (a) continue;"}),
        # return values
        ("return a(b);", {"return {};"}),
        ("return true;", {"return false;"}),
        ("return 0;", {"return 1;", "return -1;"}),
        ("return nullptr;", set()),
        ('return "";', set()),
        ("return;", set()),
    ]

    def test_Statement_GivesEveryChangeOfIt(self):
        for statement, expected in self.CASES:
            with self.subTest(statement):
                self.assertEqual(within_function(statement), expected)

    def test_SeveralPlaces_ChangeOneAtATime(self):
        self.assertEqual(within_function("return a < b && c;"),
                         {"return a <= b && c;", "return a < b || c;", "return {};"})


class Untouched(unittest.TestCase):
    TEXTS = [
        "// a < b && c + 1\n",
        "/* if (a) b(1); */",
        "#include <vector>\n",
        "#define TWICE(x) ((x) + (x) * 1) \\\n  + 2\n",
        "static_assert(sizeof(int) == 4 && true,\n  \"4 < 5\");",
        "[[gnu::format(printf, 2, 3)]] void f(const char* format, ...);",
        "template <size_t N, int M = 3> void f(const T<4>& a, U&& b, char* c);",
        "bool operator==(const T& a);",
        "std::array<std::pair<int, 3>, 4> x;",
    ]

    def test_WhatHoldsNoBehaviour_GivesNothing(self):
        for text in self.TEXTS:
            with self.subTest(text):
                self.assertEqual(changed(text), set())

    def test_Texts_StayAsTheyAre(self):
        statement = 'logPrintf(level, "%d < 5 && \\"x\\" = %s // 1\\n", \'+\');'
        self.assertEqual(within_function(statement), {";"})

    def test_ExtentInHeader_StaysAndItsConstantsDoNot(self):
        self.assertEqual(changed("char text[64];", is_header=True), set())
        self.assertEqual(changed("constexpr int kSize = 64;", is_header=True),
                         {"constexpr int kSize = 65;", "constexpr int kSize = 63;"})


if __name__ == "__main__":
    unittest.main()
