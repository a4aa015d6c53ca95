#include "HelpTexts.h"

namespace qelta {

const char* const kExitHelp =
    "Exit codes: 0 done, 1 nothing found or different, 2 a command that is wrong or\n"
    "cannot be done, 3 damaged or unreadable input, 4 input or output failure, 130\n"
    "interrupted.";

const char* const kGeneralHelp =
    "Results go to the standard output, messages and progress to the standard error.\n"
    "A SOURCE is a database directory or a CalculiX result file (.frd, text or\n"
    "binary). Tables are for people; --format csv, json and jsonl give numbers with\n"
    "all their digits. In JSON a number that is none or infinite is the text NaN,\n"
    "Infinity or -Infinity. Where a source turns out to be damaged midway, a JSON\n"
    "array is not closed, so that nobody takes it for all. Progress is shown on\n"
    "terminals only, and bold letters unless NO_COLOR is set. Ctrl-C leaves a\n"
    "database at its last checkpoint. A closed pipe is no error.";

const char* const kPatternHelp =
    "Selecting blocks\n"
    "\n"
    "A block is known by its key: fields such as ONF (what kind of result it is),\n"
    "LOADCASE, INCREMENT or LABEL, each of which it may have or not. An option\n"
    "-w FIELD=VALUE selects by one field; several must all hold. Upper and lower case\n"
    "of fields and kinds do not matter, that of texts does.\n"
    "\n"
    "  LAYER=2              exactly this number\n"
    "  LABEL=DISP           exactly this text\n"
    "  ITERATION=10..20     a range; 10.. is at least, ..20 at most\n"
    "  STATE=1,3,8..9       one of a list\n"
    "  LABEL=DISP,FORC      one of a list of texts\n"
    "  LABEL='a, b'         a text in quotes is never anything else\n"
    "  LABEL~'STR*'         * stands for any letters, ? for any single one\n"
    "  LAYER=?              the block has this field\n"
    "  LAYER=!              the block does not have it\n"
    "  ONF=displacement     a kind of block, by name or number\n"
    "  ONF=@nodal           any kind of a category\n"
    "  INCREMENT=max        the highest, or min: the lowest, of all that are left\n"
    "  INCREMENT=max/LOADCASE   the same for each value of another field\n"
    "\n"
    "Texts have no ranges and no highest: a text with .. in it, max, min, ? or ! in a\n"
    "list, and an empty text stand in quotes. A quote in quotes is doubled.\n"
    "\n"
    "First all conditions that look at one block alone are tested, then the extremes\n"
    "one after another as they are given, each over what the ones before it have\n"
    "left. Several conditions may stand in one text, separated by semicolons.\n"
    "--latest is ITERATION=max.\n"
    "\n"
    "Fields that hold numbers: ITERATION, ONF, STATE, LOADCASE, SUBSTEP, ANALYSIS,\n"
    "INCREMENT, LAYER, MICROPHONE, ID_TYPE, DIRECTION, SUB_LEVEL.\n"
    "Fields that hold texts: OBJECTIVE_ID, LABEL.\n"
    "\n"
    "Shells take * ? ! and ; for themselves: put such conditions in quotes.\n"
    "\n"
    "Examples:\n"
    "  qelta ls job.frd -w ONF=@nodal -w INCREMENT=max/LOADCASE\n"
    "  qelta find run.db -w ITERATION=10..20 -w \"LABEL~'STR*'\"\n"
    "  qelta show run.db -w \"LABEL=DISP; ITERATION=max\" --id 17\n";

}  // namespace qelta
