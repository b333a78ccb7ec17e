-- Neovim's own LSP client (0.7 and later) on orto lsp: opens a Markdown and
-- a C file, waits for their diagnostics and prints them; then takes the
-- "Add to personal dictionary" action of a word and prints what is left.
local program = os.getenv("ORTO_PROGRAM")
local root = os.getenv("LSP_ROOT")
local out = {}

local client_id = vim.lsp.start_client({ name = "orto", cmd = { program, "lsp" }, root_dir = root })

local function diagnostics(buf)
  local list = vim.diagnostic.get(buf)
  table.sort(list, function(a, b)
    if a.lnum ~= b.lnum then return a.lnum < b.lnum end
    return a.col < b.col
  end)
  return list
end

local function show(name, buf)
  for _, d in ipairs(diagnostics(buf)) do
    table.insert(out, string.format("%s %d:%d-%d severity %d: %s", name, d.lnum, d.col, d.end_col, d.severity, d.message))
  end
end

local function open(name)
  vim.cmd("edit " .. root .. "/" .. name)
  local buf = vim.api.nvim_get_current_buf()
  vim.lsp.buf_attach_client(buf, client_id)
  vim.wait(20000, function() return #vim.diagnostic.get(buf) > 0 end, 10)
  show(name .. " (" .. vim.bo[buf].filetype .. ")", buf)
  return buf
end

local md = open("sample.md")
local c = open("sample.c")

-- the code actions on "recieve" in line 4, as a user asks for them
vim.api.nvim_set_current_buf(md)
local client = vim.lsp.get_client_by_id(client_id)
local params = {
  textDocument = { uri = vim.uri_from_bufnr(md) },
  range = { start = { line = 3, character = 12 }, ["end"] = { line = 3, character = 12 } },
  context = { diagnostics = {} },
}
local answer = client.request_sync("textDocument/codeAction", params, 20000, md)
local before = #vim.diagnostic.get(md)
for _, action in ipairs(answer.result or {}) do
  table.insert(out, "action: " .. action.title)
  if action.command and action.command.command == "orto.addToPersonalDictionary" then
    client.request_sync("workspace/executeCommand", action.command, 20000, md)
  end
end
vim.wait(20000, function() return #vim.diagnostic.get(md) < before end, 10)
table.insert(out, "after the add:")
show("sample.md", md)

io.stdout:write(table.concat(out, "\n") .. "\n")
vim.cmd("qa!")
