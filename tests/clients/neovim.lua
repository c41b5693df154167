-- Neovim's own client with the configuration in editors/vim: what it shows, compared exactly. Run by tests/clients/run
-- in a copy of program/. Works with Neovim 0.7.2 and later.
local lsp = vim.lsp
local failures, passed = 0, 0

local function wait_for(what, condition)
  if not vim.wait(5000, condition, 5) then error('no ' .. what .. ' within 5 seconds', 2) end
end

local function expect(expected, actual)
  if vim.deep_equal(expected, actual) then return end
  error('expected ' .. vim.inspect(expected) .. '\ngot ' .. vim.inspect(actual), 2)
end

local function lines() return vim.api.nvim_buf_get_lines(0, 0, -1, true) end

-- "line:column text" for each finding in a file, from 1.
local function findings(file)
  return vim.tbl_map(
    function(finding) return ('%d:%d %s'):format(finding.lnum + 1, finding.col + 1, finding.message) end,
    vim.diagnostic.get(vim.fn.bufnr(file))
  )
end

-- The clients of the buffer: Neovim 0.10 has renamed the function.
local function attached()
  return vim.tbl_values((lsp.get_clients and lsp.get_clients({ bufnr = 0 })) or lsp.buf_get_clients(0))
end

-- Opens the file as it is on the disk, and puts the cursor on the first such text.
local function open(file, text)
  vim.cmd('silent edit! ' .. file)
  wait_for('server', function() return #attached() == 1 and attached()[1].initialized end)
  vim.fn.cursor(1, 1)
  if text then assert(vim.fn.search('\\V' .. text, 'c') > 0, 'no ' .. text) end
end

local function set_line(number, text) vim.api.nvim_buf_set_lines(0, number - 1, number, true, { text }) end

-- The lines of the window that floats above the text. How code is marked in it depends on the version.
local function floating()
  for _, window in ipairs(vim.api.nvim_list_wins()) do
    if vim.api.nvim_win_get_config(window).relative ~= '' then
      local shown = vim.api.nvim_buf_get_lines(vim.api.nvim_win_get_buf(window), 0, -1, true)
      vim.api.nvim_win_close(window, true)
      return vim.tbl_filter(function(line) return line ~= '' and not line:match('^```') end, shown)
    end
  end
end

local function floating_after(request)
  local shown
  request()
  wait_for('window', function()
    shown = floating()
    return shown ~= nil
  end)
  return shown
end

-- "file:line:column" of the cursor, and of a list that Neovim fills.
local function place() return ('%s:%d:%d'):format(vim.fn.expand('%:t'), vim.fn.line('.'), vim.fn.col('.')) end
local function places(list)
  return vim.tbl_map(
    function(item) return ('%s:%d:%d'):format(vim.fn.fnamemodify(vim.fn.bufname(item.bufnr), ':t'), item.lnum, item.col) end,
    list
  )
end

local function choose_first(action)
  vim.ui.select = function(items, _, on_choice) on_choice(items[1], 1) end
  action()
end

local function format()
  if lsp.buf.format then return lsp.buf.format({ timeout_ms = 5000 }) end
  lsp.buf.formatting_sync(nil, 5000)
end

local folder = debug.getinfo(1, 'S').source:match('@?(.*)/')

local tests = {
  {
    'diagnostics come and go',
    function()
      open('main.asm')
      set_line(5, '        JSR drew')
      wait_for('finding', function() return #findings('main.asm') > 0 end)
      expect({ "5:13 'drew' is not defined: it counts as 0\ndid you mean 'draw'?" }, findings('main.asm'))
      set_line(5, '        JSR draw')
      wait_for('silence', function() return #findings('main.asm') == 0 end)
    end,
  },
  {
    'definition in an include file',
    function()
      open('main.asm', 'draw')
      lsp.buf.definition()
      wait_for('jump', function() return vim.fn.expand('%:t') == 'lib.inc' end)
      expect('lib.inc:5:1', place())
    end,
  },
  {
    'references',
    function()
      open('lib.inc', 'draw')
      lsp.buf.references()
      wait_for('list', function() return #vim.fn.getqflist() > 0 end)
      expect({ 'lib.inc:5:1', 'main.asm:5:13' }, places(vim.fn.getqflist()))
      vim.cmd('cclose')
    end,
  },
  {
    'hover',
    function()
      open('main.asm', 'draw')
      expect({
        '`draw`: label at `$200B` = 8203 = `%0010000000001011`',
        'used once, lib.inc line 5',
        'draw:   LDX #0',
      }, floating_after(lsp.buf.hover))
    end,
  },
  {
    'completion',
    function()
      open('main.asm')
      set_line(5, '        JSR dr')
      vim.fn.cursor(5, 14)
      local position = lsp.util.make_position_params(0, attached()[1].offset_encoding)
      position.position.character = 14
      local answer = lsp.buf_request_sync(0, 'textDocument/completion', position, 5000)
      local result = select(2, next(answer)).result
      local items = result.items or result
      table.sort(items, function(a, b) return a.sortText < b.sortText end)
      local shown, colour = {}, nil
      for index, item in ipairs(items) do
        if index <= 3 then table.insert(shown, item.label .. ' ' .. item.detail) end
        if item.label == 'COLBK' then colour = item.detail end
      end
      expect({ '.loop $2008', 'draw $200B', 'start $2000' }, shown)
      expect('$D01A', colour)
      lsp.util.apply_text_edits({ items[2].textEdit }, vim.api.nvim_get_current_buf(), attached()[1].offset_encoding)
      expect('        JSR draw', lines()[5])
    end,
  },
  {
    'rename in all files',
    function()
      open('main.asm', 'draw')
      lsp.buf.rename('paint')
      wait_for('change', function() return lines()[5] == '        JSR paint' end)
      vim.cmd('buffer lib.inc')
      expect({
        '.macro poke address,value',
        '        LDA #value',
        '        STA address',
        '',
        'paint:   LDX #0',
        '        poke 709,10',
        '        RTS',
      }, lines())
    end,
  },
  {
    'a code action',
    function()
      open('main.asm')
      set_line(5, '        JSR drew')
      wait_for('finding', function() return #findings('main.asm') == 1 end)
      vim.fn.cursor(5, 13)
      choose_first(lsp.buf.code_action)
      wait_for('change', function() return lines()[5] == '        JSR draw' end)
      wait_for('silence', function() return #findings('main.asm') == 0 end)
    end,
  },
  {
    'formatting',
    function()
      open('main.asm')
      local before = lines()
      set_line(3, 'start: LDA #65')
      set_line(4, '  STA    COLBK')
      format()
      expect(before, lines())
    end,
  },
}

local function run()
  vim.cmd('source ' .. folder .. '/file_types.vim')
  expect({}, vim.v.errors)
  require('kiln').setup({ cmd = { vim.env.KILN_LSP } })
  for _, test in ipairs(tests) do
    open('lib.inc')
    open('main.asm')
    local ok, message = xpcall(test[2], debug.traceback)
    if ok then
      passed = passed + 1
    else
      failures = failures + 1
      io.stdout:write('FAILED: ' .. test[1] .. '\n' .. message .. '\n')
    end
  end
  io.stdout:write(('Neovim: %d passed, %d failed\n'):format(passed, failures))
end

local ok, message = xpcall(run, debug.traceback)
if not ok then io.stdout:write(message .. '\n') end
vim.cmd((ok and failures == 0) and 'qall!' or 'cquit!')
