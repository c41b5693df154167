-- kiln-lsp in the built-in client of Neovim 0.7 and later: require('kiln').setup() in init.lua.
local kiln = {}

local options = {
  cmd = { 'kiln-lsp' },
  inlay_hints = true, -- Neovim 0.10 and later shows them
  code_lens = false,
  on_attach = nil, -- function(client, buffer)
}

local clients = {} -- the id of the client of each root folder; Neovim 0.8 and later keeps them itself

-- Neovim 0.11 has these keys for every server.
local keys = {
  K = 'hover',
  grn = 'rename',
  gra = 'code_action',
  grr = 'references',
  gO = 'document_symbol',
}

local function set_keys(buffer)
  for key, name in pairs(keys) do
    vim.keymap.set('n', key, function() vim.lsp.buf[name]() end, { buffer = buffer, desc = 'vim.lsp.buf.' .. name })
  end
  vim.bo[buffer].omnifunc = 'v:lua.vim.lsp.omnifunc'
  vim.bo[buffer].tagfunc = 'v:lua.vim.lsp.tagfunc'
end

local function show_code_lens(client, buffer)
  if not client.server_capabilities.codeLensProvider then return end
  local function refresh() vim.lsp.codelens.refresh() end
  vim.api.nvim_create_autocmd({ 'BufEnter', 'InsertLeave' }, { buffer = buffer, callback = refresh })
  refresh()
end

local function on_attach(client, buffer)
  if vim.fn.has('nvim-0.11') == 0 then set_keys(buffer) end
  if vim.lsp.inlay_hint and options.inlay_hints then vim.lsp.inlay_hint.enable(true, { bufnr = buffer }) end
  if options.code_lens then show_code_lens(client, buffer) end
  if options.on_attach then options.on_attach(client, buffer) end
end

-- The command of the server's code lens: its arguments are a file and a place in it.
local function show_references(command)
  local uri, place = unpack(command.arguments)
  vim.api.nvim_set_current_buf(vim.uri_to_bufnr(uri))
  vim.api.nvim_win_set_cursor(0, { place.line + 1, place.character })
  vim.lsp.buf.references()
end

-- What vim.lsp.start() takes, for a file.
function kiln.config(file)
  return {
    name = 'kiln-lsp',
    cmd = options.cmd,
    root_dir = vim.fn['kiln#root'](file),
    init_options = { inlayHints = options.inlay_hints },
    on_attach = on_attach,
  }
end

-- Shows the buffer to the server, which is started when none has its project yet.
function kiln.start(buffer)
  local file = vim.api.nvim_buf_get_name(buffer)
  if file == '' or vim.bo[buffer].buftype ~= '' then return end
  if vim.fn.executable(options.cmd[1]) == 0 then
    vim.notify_once('kiln: cannot find ' .. options.cmd[1], vim.log.levels.WARN)
    return
  end
  local config = kiln.config(file)
  if vim.lsp.start then return vim.lsp.start(config, { bufnr = buffer }) end
  local id = clients[config.root_dir]
  if id == nil or vim.lsp.client_is_stopped(id) then id = vim.lsp.start_client(config) end
  clients[config.root_dir] = id
  vim.lsp.buf_attach_client(buffer, id)
end

function kiln.setup(given)
  options = vim.tbl_extend('force', options, given or {})
  vim.lsp.commands['kiln.showReferences'] = show_references
  vim.api.nvim_create_autocmd('FileType', {
    group = vim.api.nvim_create_augroup('kiln_lsp', {}),
    pattern = { 'kiln', 'kilnproject' },
    callback = function(event) kiln.start(event.buf) end,
  })
end

return kiln
