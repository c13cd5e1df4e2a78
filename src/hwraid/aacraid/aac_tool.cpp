#include "hwraid/aacraid/aac_tool.h"

#include "hwraid/aacraid/aac_public.h"
#include "hwraid/aacraid/create_a_uuid.h"
#include "hwraid/aacraid/output_debug_string.h"

#include <fcntl.h>
#include <iterator>
#include <stdarg.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

static constexpr char SOURCE[] = "hwraid/aacraid/aac_tool";

void ToolScript::Add(const char *lpszFormat, ...)
{
	if (!Fits())
		return;
	va_list arguments;
	va_start(arguments, lpszFormat);
	const int nAdded =
		vsnprintf(m_szText + m_nLength, sizeof m_szText - m_nLength, lpszFormat, arguments);
	va_end(arguments);
	m_nLength = nAdded < 0 ? sizeof m_szText : m_nLength + static_cast<size_t>(nAdded);
}

void ToolScript::AddAddress(int nC_ID_L)
{
	Add("(%d,%d,%d)", GetChannelFromC_ID_L(nC_ID_L), GetIDFromC_ID_L(nC_ID_L), GetLunFromC_ID_L(nC_ID_L));
}

const ToolTraces COMMAND_TRACES = {
	[](int nStatus, const char *lpszCommand) {
		OutputDebugString("system call return = %d, szCommandLine= %s\n", nStatus, lpszCommand);
	},
	[](const char *lpszFile) { OutputDebugString("stat file < 0:%s\n", lpszFile); },
};

#define TRACE_POSITION() OutputDebugString("File:%s, Line:%4d\n", SOURCE, __LINE__)

// The files of one run, named by fresh UUIDs. Once there is a script, all three are removed when the scope
// ends, whether they exist or not.
struct RunFiles {
	char szScript[256];
	char szRaw[256];
	char szFiltered[256];
	bool bScriptMade = false;
	bool bRun = false;

	RunFiles()
	{
		CreateOneUuid(szScript);
		CreateOneUuid(szRaw);
		CreateOneUuid(szFiltered);
	}

	~RunFiles()
	{
		if (bScriptMade)
			DeleteFileWindowsAndLinux(szScript);
		if (bRun) {
			DeleteFileWindowsAndLinux(szRaw);
			DeleteFileWindowsAndLinux(szFiltered);
		}
	}

	RunFiles(const RunFiles &) = delete;
	RunFiles &operator=(const RunFiles &) = delete;
};

// A file that nobody else can write, whatever the umask of the host: who can write the script drives the
// controller. A umask that takes the owner's rights too would keep the shell from opening it.
static int MakeOwnFile(const char *lpszPath)
{
	const int nFile = open(lpszPath, O_CREAT | O_EXCL | O_CLOEXEC | O_RDWR, 0600);
	if (nFile != -1)
		fchmod(nFile, 0600);
	return nFile;
}

static FILE *MakeScript(RunFiles *pFiles)
{
	const int nFile = MakeOwnFile(pFiles->szScript);
	if (nFile == -1)
		return nullptr;
	pFiles->bScriptMade = true;
	FILE *pFile = fdopen(nFile, "w+");
	if (!pFile)
		close(nFile);
	return pFile;
}

// A script that is cut short, on a full disk for one, is none: the tool would obey the part that is there.
static int WriteScript(RunFiles *pFiles, const char *lpszScript)
{
	FILE *pFile = MakeScript(pFiles);
	if (!pFile) {
		OutputDebugString("File:%s, Line:%4d can not create file.\n", SOURCE, __LINE__);
		return -1;
	}
	const bool bWritten = fprintf(pFile, "%s", lpszScript) >= 0;
	return fclose(pFile) == 0 && bWritten ? 0 : -1;
}

// The shell that writes the tool's output then opens a file that is ours.
static bool MakeRawOutput(const char *lpszPath)
{
	const int nFile = MakeOwnFile(lpszPath);
	if (nFile != -1)
		close(nFile);
	return nFile != -1;
}

typedef char Command[1024];

// A command that does not fit its buffer is a failed one: the part that fits would be another command.
static bool FitsCommand(int nLength)
{
	return nLength >= 0 && nLength < static_cast<int>(sizeof(Command));
}

static int CheckStatus(const ToolTraces &traces, int nStatus, const char *lpszCommand)
{
	if (nStatus == 0)
		return 0;
	traces.pfnCommandFailed(nStatus, lpszCommand);
	return -1;
}

// Without a tool the run fails as with one that the shell does not find; none is started: it would take what
// follows for a program.
static int RunProgram(const ToolTraces &traces, const RunFiles &files)
{
	constexpr int NO_SUCH_PROGRAM = 127 << 8;
	const char *lpszTool = GetCliConfig();
	Command szCommand;
	if (!FitsCommand(snprintf(szCommand, sizeof szCommand, "%s <%s >%s", lpszTool ? lpszTool : "(null)",
	                          files.szScript, files.szRaw)))
		return -1;
	const bool bCanRun = lpszTool && lpszTool[0] != '\0' && MakeRawOutput(files.szRaw);
	return CheckStatus(traces, bCanRun ? system(szCommand) : NO_SUCH_PROGRAM, szCommand);
}

// Without a filter the line begins with the raw output's name, which no shell can run.
static int RunFilter(const ToolTraces &traces, const RunFiles &files)
{
	Command szCommand;
	if (!FitsCommand(snprintf(szCommand, sizeof szCommand, "%s %s %s", GetFilterScript(), files.szRaw,
	                          files.szFiltered)))
		return -1;
	return CheckStatus(traces, system(szCommand), szCommand);
}

int RunTool(const ToolScript &script, const ToolTraces &traces,
            int (*pfnParse)(const char *lpszFile, void *pContext), void *pContext)
{
	if (!script.Fits())
		return -1;
	TRACE_POSITION();
	RunFiles files;
	if (WriteScript(&files, script.Text()) != 0)
		return -1;
	TRACE_POSITION();
	// The tool paints a terminal and wants one that it knows.
	if (setenv("TERM", "linux", 1) != 0) {
		OutputDebugString("ERROR! ==> setenv return != 0\n");
		return -1;
	}

	TRACE_POSITION();
	files.bRun = true;
	if (RunProgram(traces, files) != 0)
		return -1;
	TRACE_POSITION();
	if (RunFilter(traces, files) != 0)
		return -1;
	TRACE_POSITION();
	struct stat status;
	if (stat(files.szFiltered, &status) != 0) {
		traces.pfnAnswerMissing(files.szFiltered);
		return -1;
	}
	return pfnParse(files.szFiltered, pContext);
}

ToolOutput::ToolOutput(const char *lpszFile) : m_pFile(fopen(lpszFile, "rte"))
{
	m_szLine[0] = '\0';
}

ToolOutput::~ToolOutput()
{
	if (m_pFile)
		fclose(m_pFile);
}

bool ToolOutput::Read()
{
	const bool bRead = fgets(m_szLine, sizeof m_szLine, m_pFile) != nullptr;
	if (!bRead)
		m_szLine[0] = '\0';
	CutOffHeaderString(m_szLine, PAGER_PROMPT, " \t", 1);
	return bRead;
}

static const ToolError *FindError(const char *lpszLine, const ToolError *pRows, size_t nRows)
{
	for (const ToolError *pRow = pRows; pRow != pRows + nRows; pRow++)
		if (strstr(lpszLine, pRow->lpszText))
			return pRow;
	return nullptr;
}

int CodeOfErrorLine(const char *lpszLine, const ToolError *pOwn, size_t nOwn)
{
	const ToolError *pRow = FindError(lpszLine, CONTROLLER_ERRORS, std::size(CONTROLLER_ERRORS));
	if (!pRow)
		pRow = FindError(lpszLine, pOwn, nOwn);
	return pRow ? pRow->nCode : OTHER_TOOL_ERROR;
}

bool FindEcho(ToolOutput *pOutput, const char *lpszEcho, int *pnError)
{
	*pnError = 0;
	while (pOutput->Next()) {
		if (Including(pOutput->Line(), lpszEcho))
			return true;
		if (Including(pOutput->Line(), "Command Error")) {
			*pnError = CodeOfErrorLine(pOutput->Line());
			return false;
		}
	}
	return false;
}

bool ToolTable::Next()
{
	while (m_pOutput->Next()) {
		const char *lpszLine = m_pOutput->Line();
		if (Including(lpszLine, "----"))
			m_bInTable = true;
		else if (m_bInTable)
			return !Including(lpszLine, "CLI") && lpszLine[0] != '\n';
	}
	return false;
}
