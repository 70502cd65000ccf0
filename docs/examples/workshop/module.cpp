#include <KVLKit.h>

#include <stdexcept>

namespace {

struct Board {
  double length = 1;
  double width = 0.2;

  double Area() const { return length * width; }
  void Cut(double amount) {
    if (!(amount >= 0 && amount <= length)) throw std::invalid_argument("the board is too short");
    length -= amount;
  }
};

// The text of a board: "(length, width)".
bool ParseBoard(const MRBUnicodeString& text, Board& board) {
  return !KVLFailed(kvl::ParseRecord(text, board.length, board.width));
}
MRBUnicodeString PrintBoard(const Board& board) {
  return kvl::PrintRecord(board.length, board.width);
}

enum class Wood { Oak, Pine, Walnut };

double Price(const Board& board, Wood wood) {
  const double perSquareMetre = wood == Wood::Oak ? 60 : wood == Wood::Pine ? 15 : 110;
  return board.Area() * perSquareMetre;
}

int saws = 2;

}  // namespace

// What the text means in C++ is said once, at global scope ...
KVL_TYPE(Board, "Board", ParseBoard, PrintBoard);
KVL_ENUM(Wood, "Wood", Oak, Pine, Walnut);
KVL_LIST(Board);

// ... and then everything that uses these types is a line.
KVL_FUNCTION("wood/price", "board, wood = Pine", "The price of the board.", Price);
KVL_FUNCTION("wood/total", "boards", "The area of all the boards together.",
             [](const KVLVector<Board>& boards) {
               double total = 0;
               for (const Board& board : boards)
                 total += board.Area();
               return total;
             });
KVL_FUNCTION("wood/split", "board, first, second, at = 0.5",
             "Saws the board in two, at a part of its length.",
             [](Board board, kvl::Out<Board> first, kvl::Out<Board> second, double at) {
               first = Board{board.length * at, board.width};
               second = Board{board.length * (1 - at), board.width};
             });
KVL_FUNCTION("_members/Board/Area", "this", "Length times width.", &Board::Area);
KVL_FUNCTION("_members/Board/Cut", "this, amount = 0.1", "Shortens the board.", &Board::Cut);
KVL_VARIABLE("wood/saws", &saws, "How many saws there are; may be set.");
KVL_CONVERSION_WITH(Board, double, [](const Board& board) { return board.Area(); });
KVL_DOC("wood", "Boards, and what they cost.");
KVL_DOC("_types/Board", "A board, as (length, width) in metres.");
