// SPDX-License-Identifier: Apache-2.0
#include "hwraid/aacraid/aac_tool.h"

#include "hwraid/aacraid/aac_config.h"
#include "hwraid/aacraid/aac_records.h"
#include "hwraid/aacraid/create_a_uuid.h"
#include "hwraid/aacraid/output_debug_string.h"

#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

static constexpr char SOURCE[] = "hwraid/aacraid/aac_tool";

#define TRACE_POSITION() OutputDebugString("File:%s, Line:%4d\n", SOURCE, __LINE__)

// ---- script ----

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

// ---- traces ----

static void TraceCommandFailed(int nStatus, const char *lpszCommand)
{
	OutputDebugString("system call return = %d, szCommandLine= %s\n", nStatus, lpszCommand);
}

static void TraceAnswerMissing(const char *lpszFile)
{
	OutputDebugString("stat file < 0:%s\n", lpszFile);
}

const ToolTraces COMMAND_TRACES = {TraceCommandFailed, TraceAnswerMissing};

// ---- files ----

// A file that nobody else can write, whatever the umask of the host: who can write the script drives the
// controller. A umask that takes the owner's rights too would keep the shell from opening it.
static int MakeOwnFile(const char *lpszPath)
{
	const int nFile = open(lpszPath, O_CREAT | O_EXCL | O_CLOEXEC | O_RDWR, 0600);
	if (nFile != -1)
		fchmod(nFile, 0600);
	return nFile;
}

// The shell that writes the tool's output then opens a file that is ours.
static bool MakeRawOutput(const char *lpszPath)
{
	const int nFile = MakeOwnFile(lpszPath);
	if (nFile != -1)
		close(nFile);
	return nFile != -1;
}

// A script that is cut short, on a full disk for one, is none: the tool would obey the part that is there.
bool ToolRun::WriteScript(const char *lpszScript)
{
	const int nFile = MakeOwnFile(m_szScript);
	m_bScriptMade = nFile != -1;
	FILE *pFile = m_bScriptMade ? fdopen(nFile, "w+") : nullptr;
	if (!pFile) {
		OutputDebugString("File:%s, Line:%4d can not create file.\n", SOURCE, __LINE__);
		if (m_bScriptMade)
			close(nFile);
		return false;
	}
	const bool bWritten = fprintf(pFile, "%s", lpszScript) >= 0;
	return fclose(pFile) == 0 && bWritten;
}

int DeleteFileWindowsAndLinux(const char *lpszPath)
{
	char szCommand[1024];
	const int nLength = snprintf(szCommand, sizeof szCommand, "rm -rf %s", lpszPath);
	if (nLength < 0 || nLength >= static_cast<int>(sizeof szCommand))
		return -1; // a cut command would remove something else
	return system(szCommand) == 0 ? 0 : -1;
}

// ---- commands ----

typedef char Command[1024];

// A command that does not fit its buffer is a failed one: the part that fits would be another command.
static bool FitsCommand(int nLength)
{
	return nLength >= 0 && nLength < static_cast<int>(sizeof(Command));
}

static bool CheckStatus(const ToolTraces &traces, int nStatus, const char *lpszCommand)
{
	if (nStatus != 0)
		traces.pfnCommandFailed(nStatus, lpszCommand);
	return nStatus == 0;
}

// Without a tool the run fails as with one that the shell does not find; none is started: it would take what
// follows for a program.
bool ToolRun::RunTool() const
{
	constexpr int NO_SUCH_PROGRAM = 127 << 8;
	const char *lpszTool = GetCliConfig();
	Command szCommand;
	if (!FitsCommand(snprintf(szCommand, sizeof szCommand, "%s <%s >%s", lpszTool ? lpszTool : "(null)",
	                          m_szScript, m_szRaw)))
		return false;
	const bool bCanRun = lpszTool && lpszTool[0] != '\0' && MakeRawOutput(m_szRaw);
	return CheckStatus(m_traces, bCanRun ? system(szCommand) : NO_SUCH_PROGRAM, szCommand);
}

// Without a filter the line begins with the raw output's name, which no shell can run.
bool ToolRun::RunFilter() const
{
	Command szCommand;
	if (!FitsCommand(snprintf(szCommand, sizeof szCommand, "%s %s %s", GetFilterScript(), m_szRaw,
	                          m_szFiltered)))
		return false;
	return CheckStatus(m_traces, system(szCommand), szCommand);
}

bool ToolRun::HasAnswer() const
{
	struct stat status;
	const bool bThere = stat(m_szFiltered, &status) == 0;
	if (!bThere)
		m_traces.pfnAnswerMissing(m_szFiltered);
	return bThere;
}

// The tool paints a terminal and wants one that it knows.
static bool SetTerminal()
{
	const bool bSet = setenv("TERM", "linux", 1) == 0;
	if (!bSet)
		OutputDebugString("ERROR! ==> setenv return != 0\n");
	return bSet;
}

// ---- run ----

ToolRun::ToolRun(const ToolScript &script, const ToolTraces &traces) : m_traces(traces)
{
	m_bAnswered = script.Fits() && Run(script);
}

ToolRun::~ToolRun()
{
	if (m_bScriptMade)
		DeleteFileWindowsAndLinux(m_szScript);
	if (m_bRun) {
		DeleteFileWindowsAndLinux(m_szRaw);
		DeleteFileWindowsAndLinux(m_szFiltered);
	}
}

bool ToolRun::Run(const ToolScript &script)
{
	TRACE_POSITION();
	CreateOneUuid(m_szScript);
	CreateOneUuid(m_szRaw);
	CreateOneUuid(m_szFiltered);
	if (!WriteScript(script.Text()))
		return false;
	TRACE_POSITION();
	if (!SetTerminal())
		return false;
	TRACE_POSITION();
	m_bRun = true;
	if (!RunTool())
		return false;
	TRACE_POSITION();
	if (!RunFilter())
		return false;
	TRACE_POSITION();
	return HasAnswer();
}
