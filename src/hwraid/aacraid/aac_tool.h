// One run of the controller vendor's command-line tool: a script on its standard input, its output through
// the site's filter script, the filtered file to a parser. Every operation of the hardware side is such a
// run.
#ifndef DISKSCOUT_HWRAID_AAC_TOOL_H
#define DISKSCOUT_HWRAID_AAC_TOOL_H

#include <stddef.h>
#include <stdio.h>

// The commands of one run, put together piece by piece.
class ToolScript
{
public:
	ToolScript() { m_szText[0] = '\0'; }
	__attribute__((format(printf, 2, 3))) void Add(const char *lpszFormat, ...);
	void AddAddress(int nC_ID_L); // "(channel,ID,LUN)", decimal
	// False once something did not fit: such a script is never run.
	bool Fits() const { return m_nLength < sizeof m_szText; }
	const char *Text() const { return m_szText; }

private:
	char m_szText[8192];
	size_t m_nLength = 0;
};

// What the debug trace says when a run fails; each family of operations has words of its own.
struct ToolTraces {
	void (*pfnCommandFailed)(int nStatus, const char *lpszCommand);
	void (*pfnAnswerMissing)(const char *lpszFile);
};

// Those of the operations on containers.
extern const ToolTraces COMMAND_TRACES;

// Runs the tool with this script and hands the filtered output file to the parser. Returns the parser's
// result; -1 when the script does not fit or cannot be written, when tool or filter fail or the configuration
// names none, or when there is no answer. Blocks until both have ended; the three files, made in the working
// directory, are gone afterwards in any case.
int RunTool(const ToolScript &script, const ToolTraces &traces,
            int (*pfnParse)(const char *lpszFile, void *pContext), void *pContext);

// The same with a parser that brings its context along.
template <class Parser> int RunTool(const ToolScript &script, const ToolTraces &traces, Parser parse)
{
	const auto Call = [](const char *lpszFile, void *pParser) {
		return (*static_cast<Parser *>(pParser))(lpszFile);
	};
	return RunTool(script, traces, Call, &parse);
}

// Printed without a line end before the next line's text, wherever the tool's screen was full.
constexpr char PAGER_PROMPT[] =
	"( <SPACEBAR>:next screen, <Enter>:next line, <C>:Continous, <Q>:Quit Early )";

// A file of tool output, line by line. A line beyond 511 characters goes on as the next one. Of every line
// the pager prompt at its start and the blanks and tabs that then lead it are cut off.
class ToolOutput
{
public:
	explicit ToolOutput(const char *lpszFile);
	~ToolOutput();
	ToolOutput(const ToolOutput &) = delete;
	ToolOutput &operator=(const ToolOutput &) = delete;

	bool IsOpen() const { return m_pFile != nullptr; }
	// False at the end of the output.
	bool Read();
	// False also at a line that is cleaned to nothing, where most tables end: a bare newline is
	// something.
	bool Next() { return Read() && m_szLine[0] != '\0'; }
	char *Line() { return m_szLine; }

private:
	FILE *m_pFile;
	char m_szLine[512];
};

// A text in an error line of the tool, and what it stands for.
struct ToolError {
	const char *lpszText;
	int nCode;
};

constexpr int CONTROLLER_UNUSABLE = -100; // wrong, missing or not opened
constexpr int CONTROLLER_BUSY = -200;     // held by another application
constexpr int OTHER_TOOL_ERROR = -300;
// Of several operations.
constexpr int NO_SUCH_DEVICE = -2; // channel or device

// The errors that every operation knows, tried first and in this order.
constexpr ToolError CONTROLLER_ERRORS[] = {
	{"<The requested controller is of the wrong type", CONTROLLER_UNUSABLE},
	{"<Adapter must be opened before this command is used", CONTROLLER_UNUSABLE},
	{"<The requested controller does not exist", CONTROLLER_UNUSABLE},
	{"<Another application has opened th", CONTROLLER_BUSY},
};

// The code of the first row whose text stands anywhere in the line: CONTROLLER_ERRORS, then an operation's
// own rows. OTHER_TOOL_ERROR when there is none.
int CodeOfErrorLine(const char *lpszLine, const ToolError *pOwn, size_t nOwn);
template <size_t rows> int CodeOfErrorLine(const char *lpszLine, const ToolError (&own)[rows])
{
	return CodeOfErrorLine(lpszLine, own, rows);
}
inline int CodeOfErrorLine(const char *lpszLine)
{
	return CodeOfErrorLine(lpszLine, nullptr, 0);
}

// Reads up to the echo of the command. False when the output ends before it, or has a "Command Error", whose
// code *pnError then is.
bool FindEcho(ToolOutput *pOutput, const char *lpszEcho, int *pnError);

// The rows of a table: what stands between its dashed rule and the blank line or the prompt behind it.
class ToolTable
{
public:
	explicit ToolTable(ToolOutput *pOutput) : m_pOutput(pOutput) {}
	bool Next(); // the row is the output's line

private:
	ToolOutput *m_pOutput;
	bool m_bInTable = false;
};

#endif
